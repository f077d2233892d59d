// What chance gives: quantiles of p against the permuted data sets, and their T.

function quantileLines(columns, { at }) {
  const p = (column) => words.p(10 ** -columns[column][at]);
  return [
    `rank ${words.grouped(columns.rank[at])}`,
    `observed p ${p("observed")}`,
    `expected p ${p("expected")}`,
    `in 95 % of permuted data sets ${p("low")} to ${p("high")}`,
  ];
}

function quantileSets(columns, widest) {
  const along = (name) => columns.expected.map((x, at) => ({ x, y: columns[name][at], at }));
  const line = { type: "line", pointRadius: 0, pointHitRadius: 0 };
  const edge = (name, fill) => ({
    ...line,
    data: along(name),
    borderWidth: 0,
    backgroundColor: theme.colour("band"),
    fill,
  });
  const observed = {
    data: along("observed"),
    backgroundColor: theme.colour("tone-a"),
    borderWidth: 0,
    radius: 2.5,
    hoverRadius: 5,
    hitRadius: 5,
  };
  const diagonal = {
    ...line,
    data: [{ x: 0, y: 0 }, { x: widest, y: widest }],
    borderWidth: 1,
    borderColor: theme.colour("muted"),
  };
  return [observed, diagonal, edge("low", "+1"), edge("high", false)];
}

function quantiles(box, data) {
  const columns = data.quantiles;
  const { expected, observed, low } = columns;
  const widest = Math.max(1, ...expected) * 1.03;
  const axis = (text, max) => ({
    type: "linear",
    min: 0,
    max,
    grid: { color: theme.colour("rule"), drawBorder: false },
    ticks: { precision: 0, includeBounds: false },
    title: { display: true, text },
  });
  return new Chart(box.querySelector("canvas"), {
    type: "scatter",
    data: { datasets: quantileSets(columns, widest) },
    options: {
      parsing: false,
      interaction: { mode: "nearest", intersect: true },
      scales: {
        x: axis("expected \u2212log\u2081\u2080 p, median of permuted data sets", widest),
        y: axis(
          "observed \u2212log\u2081\u2080 p",
          Math.ceil(Math.max(1, ...expected, ...low, ...observed) + 0.1)
        ),
      },
      plugins: {
        legend: { display: false },
        tooltip: tooltip(box, ({ datasetIndex, raw }) =>
          datasetIndex === 0 ? quantileLines(columns, raw) : null
        ),
      },
    },
  });
}

// Bins of a round width with T0 between two of them, so that what lies to its right is stronger.
// A bin holds from < T <= to.
function bins(values, mark) {
  const low = Math.min(mark, ...values);
  const high = Math.max(mark, ...values);
  const wanted = Math.max(8, Math.min(40, Math.ceil(3 * Math.cbrt(values.length))));
  const rough = (high - low) / wanted || 0.01;
  const power = 10 ** Math.floor(Math.log10(rough));
  const width = [1, 2, 5, 10].find((times) => times * power >= rough) * power;

  const before = Math.floor((mark - low) / width) + 1;
  const count = before + Math.max(1, Math.ceil((high - mark) / width));
  const edge = (i) => mark + (i - before) * width;
  const empty = (_, i) => ({ from: edge(i), to: edge(i + 1), sets: 0 });
  const made = Array.from({ length: count }, empty);
  for (const value of values) {
    const steps = Math.abs(value - mark) / width;
    const bin = before + (value > mark ? Math.ceil(steps) - 1 : -Math.floor(steps) - 1);
    ++made[Math.max(0, Math.min(bin, count - 1))].sets;
  }
  return { made, width };
}

function markOfStudy(mark) {
  return {
    id: "study",
    afterDatasetsDraw({ ctx, chartArea: area, scales }) {
      const x = scales.x.getPixelForValue(mark);
      const text = `this study, T0 = ${words.digits(mark, 3)}`;
      ctx.save();
      ctx.strokeStyle = ctx.fillStyle = theme.colour("accent");
      ctx.lineWidth = 2;
      ctx.beginPath();
      ctx.moveTo(x, area.top);
      ctx.lineTo(x, area.bottom);
      ctx.stroke();
      ctx.font = `600 13px ${Chart.defaults.font.family}`;
      ctx.textBaseline = "bottom";
      const width = ctx.measureText(text).width;
      const left = Math.max(area.left, Math.min(x - width / 2, area.right - width));
      ctx.fillText(text, left, area.top - 5);
      ctx.restore();
    },
  };
}

function histogramScales(first, last) {
  return {
    x: {
      type: "linear",
      offset: false,
      min: first.from,
      max: last.to,
      grid: { display: false },
      ticks: { includeBounds: false, maxRotation: 0, maxTicksLimit: 9 },
      title: { display: true, text: "T of the model that was found" },
    },
    y: {
      beginAtZero: true,
      grid: { color: theme.colour("rule"), drawBorder: false },
      ticks: { precision: 0, maxTicksLimit: 6 },
      title: { display: true, text: "permuted data sets" },
    },
  };
}

function histogram(box, data) {
  const { made, width } = bins(data.T, data.T0);
  const decimals = Math.max(0, Math.ceil(-Math.log10(width)) + 1);
  const isStronger = (bin) => bin.from > data.T0 - width / 2;
  return new Chart(box.querySelector("canvas"), {
    type: "bar",
    data: {
      datasets: [
        {
          data: made.map((bin) => ({ x: (bin.from + bin.to) / 2, y: bin.sets, bin })),
          backgroundColor: made.map((bin) => theme.colour(isStronger(bin) ? "accent" : "tone-b")),
          barPercentage: 0.94,
          categoryPercentage: 1,
        },
      ],
    },
    options: {
      parsing: false,
      layout: { padding: { top: 24 } },
      interaction: { mode: "nearest", axis: "x", intersect: false },
      scales: histogramScales(made[0], made[made.length - 1]),
      plugins: {
        legend: { display: false },
        tooltip: tooltip(box, ({ raw: { bin } }) => [
          `${words.grouped(bin.sets)} permuted data ${bin.sets === 1 ? "set" : "sets"}`,
          `T above ${bin.from.toFixed(decimals)}, at most ${bin.to.toFixed(decimals)}`,
        ]),
      },
    },
    plugins: [markOfStudy(data.T0)],
  });
}
