// What chance gives: quantiles of p against the permuted data sets, and their T.

function quantileLines(columns, point) {
  const p = (height) => words.p(10 ** -height);
  const i = point.at;
  return [
    `rank ${words.grouped(columns.rank[i])}`,
    `observed p ${p(columns.observed[i])}`,
    `expected p ${p(columns.expected[i])}`,
    `in 95 % of permuted data sets ${p(columns.low[i])} to ${p(columns.high[i])}`,
  ];
}

function quantiles(box, data) {
  const columns = data.quantiles;
  const along = (name) => columns.expected.map((x, at) => ({ x, y: columns[name][at], at }));
  const highest = Math.max(1, ...columns.expected, ...columns.low, ...columns.observed) * 1.03;
  const widest = Math.max(1, ...columns.expected) * 1.03;
  const edge = (name, fill) => ({
    data: along(name),
    type: "line",
    pointRadius: 0,
    pointHitRadius: 0,
    borderWidth: 0,
    backgroundColor: theme.colour("band"),
    fill,
  });
  const axis = (text, max) => ({
    type: "linear",
    min: 0,
    max,
    grid: { color: theme.colour("rule"), drawBorder: false },
    ticks: { precision: 0, callback: (value) => (value === max ? "" : value) },
    title: { display: true, text },
  });
  return new Chart(box.querySelector("canvas"), {
    type: "scatter",
    data: {
      datasets: [
        { data: along("observed"), backgroundColor: theme.colour("tone-a"), radius: 2.5, hoverRadius: 5, hitRadius: 5 },
        {
          data: [{ x: 0, y: 0 }, { x: widest, y: widest }],
          type: "line",
          pointRadius: 0,
          pointHitRadius: 0,
          borderWidth: 1,
          borderColor: theme.colour("muted"),
        },
        edge("low", "+1"),
        edge("high", false),
      ],
    },
    options: {
      parsing: false,
      interaction: { mode: "nearest", intersect: true },
      scales: {
        x: axis("expected \u2212log\u2081\u2080 p, median of permuted data sets", widest),
        y: axis("observed \u2212log\u2081\u2080 p", highest),
      },
      plugins: {
        legend: { display: false },
        tooltip: tooltip(box, (item) => (item.datasetIndex === 0 ? quantileLines(columns, item.raw) : null)),
      },
    },
  });
}

// Bins of a round width with T0 between two of them, so that what lies to its right is stronger.
// A bin holds from < T <= to.
function bins(values, mark) {
  const low = Math.min(mark, ...values);
  const high = Math.max(mark, ...values);
  const wanted = Math.max(8, Math.min(40, Math.ceil(2 * Math.cbrt(values.length) * 1.5)));
  const rough = (high - low) / wanted || 0.01;
  const power = 10 ** Math.floor(Math.log10(rough));
  const width = [1, 2, 5, 10].find((times) => times * power >= rough) * power;
  const before = Math.floor((mark - low) / width) + 1;
  const count = before + Math.max(1, Math.ceil((high - mark) / width));
  const start = mark - before * width;
  const made = Array.from({ length: count }, (_, i) => ({ from: start + i * width, to: start + (i + 1) * width, sets: 0 }));
  for (const value of values) {
    const step = value > mark ? before + Math.ceil((value - mark) / width) - 1 : before - 1 - Math.floor((mark - value) / width);
    ++made[Math.max(0, Math.min(step, count - 1))].sets;
  }
  return made;
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
      ctx.fillText(text, Math.max(area.left, Math.min(x - width / 2, area.right - width)), area.top - 5);
      ctx.restore();
    },
  };
}

function histogram(box, data) {
  const made = bins(data.T, data.T0);
  const width = made[0].to - made[0].from;
  const decimals = Math.max(0, Math.ceil(-Math.log10(width)) + 1);
  return new Chart(box.querySelector("canvas"), {
    type: "bar",
    data: {
      datasets: [
        {
          data: made.map((bin) => ({ x: (bin.from + bin.to) / 2, y: bin.sets, bin })),
          backgroundColor: made.map((bin) => theme.colour(bin.from >= data.T0 - width / 2 ? "accent" : "tone-b")),
          barPercentage: 0.94,
          categoryPercentage: 1,
        },
      ],
    },
    options: {
      parsing: false,
      layout: { padding: { top: 24 } },
      interaction: { mode: "nearest", axis: "x", intersect: false },
      scales: {
        x: {
          type: "linear",
          offset: false,
          min: made[0].from,
          max: made[made.length - 1].to,
          grid: { display: false },
          ticks: { includeBounds: false, maxRotation: 0, maxTicksLimit: 9 },
          title: { display: true, text: "T, how much the best model explains" },
        },
        y: {
          beginAtZero: true,
          grid: { color: theme.colour("rule"), drawBorder: false },
          ticks: { precision: 0, maxTicksLimit: 6 },
          title: { display: true, text: "permuted data sets" },
        },
      },
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
