// Draws what the page has places for, and again when colours change. window.vortReport tells tests
// and the console what is drawn.
(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const place = (id) => document.getElementById(id);
  const report = { charts: {}, labels: () => [], range: null, whole: null };
  let plot = null;
  let zoomed = null;
  window.vortReport = report;

  function defaults() {
    Object.assign(Chart.defaults, {
      animation: false,
      responsive: true,
      maintainAspectRatio: false,
      normalized: true,
      color: theme.colour("muted"),
      borderColor: theme.colour("rule"),
      devicePixelRatio: theme.onPaper() ? 3 : Math.max(devicePixelRatio, 1),
    });
    Chart.defaults.font.family = theme.font();
    Chart.defaults.font.size = 12;
  }

  // Controls, axis title and size of the dots follow what is in sight.
  function settle(range) {
    const { whole } = report;
    const all = range.min <= whole.min && range.max >= whole.max;
    const seen = inSight(plot.places, range);
    const only = seen.length === 1 ? seen[0].number : null;
    report.range = range;
    place("reset").disabled = all;
    place("region").value = only && !all ? only : "";
    plot.chart.options.scales.x.title.text =
      only === null ? "chromosome" : `position on chromosome ${words.chromosome(only)}`;
    plot.resize(range);
  }

  function drawMarkers() {
    const order = data.model ? data.model.markers.map(({ label }) => label) : [];
    plot = manhattan(place("manhattan"), data, order);
    report.labels = plot.labels;
    report.whole = plot.places.range;
    if (zoomed) zoomed.end();
    zoomed = zoom(plot.chart, report.whole, settle);
    zoomed.show(report.range || report.whole);
    return plot.chart;
  }

  function offerChromosomes() {
    const region = place("region");
    for (const { number } of data.markers.chromosomes) {
      region.add(new Option(`chromosome ${words.chromosome(number)}`, number));
    }
    region.addEventListener("change", () => {
      const chosen = plot.places.by.get(Number(region.value));
      const margin = chosen ? 0.02 * chosen.width : 0;
      const part = chosen && { min: chosen.start - margin, max: chosen.end + margin };
      zoomed.show(part || report.whole);
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

  if (data.markers) offerChromosomes();
  theme.follow(draw);
  draw();
})();
