// Draws what the page has places for, and again when colours change. window.vortReport tells tests
// and the console what is drawn.
(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const place = (id) => document.getElementById(id);
  const report = (window.vortReport = { charts: {}, labels: () => [], range: null, whole: null });
  let zoomed = null;

  function defaults() {
    Object.assign(Chart.defaults, { animation: false, responsive: true, maintainAspectRatio: false, normalized: true });
    Chart.defaults.color = theme.colour("muted");
    Chart.defaults.borderColor = theme.colour("rule");
    Chart.defaults.font.family = theme.font();
    Chart.defaults.font.size = 12;
    Chart.defaults.devicePixelRatio = theme.onPaper() ? 3 : Math.max(devicePixelRatio, 1);
  }

  function drawMarkers() {
    const order = data.model ? data.model.markers.map(({ label }) => label) : [];
    const { chart, places, whole, labels: placed } = manhattan(place("manhattan"), data, order);
    const part = report.range;
    if (zoomed) zoomed.end();
    zoomed = zoom(chart, whole, (range) => settle(chart, places, whole, range));
    report.labels = placed;
    report.whole = whole;
    settle(chart, places, whole, zoomed.range());
    if (part && (part.min > whole.min || part.max < whole.max)) zoomed.show(part);
    report.places = places;
    return chart;
  }

  // Controls and axis title say what is in sight.
  function settle(chart, places, whole, range) {
    const all = range.min <= whole.min && range.max >= whole.max;
    const inSight = places.chromosomes.filter((c) => c.end > range.min && c.start < range.max);
    report.range = range;
    place("reset").disabled = all;
    const one = inSight.length === 1 && inSight[0];
    place("region").value = one && !all ? one.number : "";
    const title = one ? `position on chromosome ${words.chromosome(one.number)}` : "chromosome";
    if (chart.options.scales.x.title.text !== title) {
      chart.options.scales.x.title.text = title;
      chart.update("none");
    }
  }

  function offerChromosomes() {
    const region = place("region");
    for (const { number } of data.markers.chromosomes) {
      region.add(new Option(`chromosome ${words.chromosome(number)}`, number));
    }
    region.addEventListener("change", () => {
      const chosen = report.places.by.get(Number(region.value));
      const margin = chosen ? 0.02 * chosen.width : 0;
      zoomed.show(chosen ? { min: chosen.start - margin, max: chosen.end + margin } : report.whole);
    });
    place("reset").addEventListener("click", () => zoomed.show(report.whole));
  }

  const drawings = {
    manhattan: drawMarkers,
    quantiles: () => quantiles(place("quantiles"), data),
    histogram: () => histogram(place("histogram"), data),
    coefficients: () => coefficientBars(place("coefficients"), data.model.learners),
    importance: () => importanceBars(place("importance"), data.model.markers),
  };

  function draw() {
    defaults();
    for (const [name, drawing] of Object.entries(drawings)) {
      if (!place(name)) continue;
      if (report.charts[name]) report.charts[name].destroy();
      report.charts[name] = drawing();
    }
  }

  place("chartjs").textContent = Chart.version;
  if (data.markers) offerChromosomes();
  theme.follow(draw);
  draw();
  document.documentElement.dataset.drawn = Object.keys(report.charts).join(" ");
})();
