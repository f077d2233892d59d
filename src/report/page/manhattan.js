// Every marker by chromosome, position and smallest p.

// The columns as points; x is the place along the genome, chromosomes end to end.
function genome(columns) {
  const total = columns.chromosomes.reduce((sum, c) => sum + (c.last - c.first), 0) || 1;
  const gap = total * 0.004;
  let start = 0;
  const chromosomes = columns.chromosomes.map((c) => {
    const width = Math.max(c.last - c.first, total * 0.012);
    const place = { ...c, start, width, end: start + width };
    start += width + gap;
    return place;
  });
  return { chromosomes, by: new Map(chromosomes.map((c) => [c.number, c])), range: { min: -gap, max: start } };
}

function decodedMarkers(columns, places) {
  const points = [];
  let at = 0;
  for (const [number, length] of columns.runs) {
    const chromosome = places.by.get(number);
    const single = chromosome.first === chromosome.last;
    let position = 0;
    for (let i = 0; i < length; ++i, ++at) {
      position += columns.position[at];
      // Without distances the markers stand in their order, in the middle where there is but one.
      const x = single ? ((i + 0.5) / length) * chromosome.width : position - chromosome.first;
      const code = columns.p[at];
      const mantissa = (code % 1000) / 100;
      const exponent = Math.floor(code / 1000);
      points.push({ x: chromosome.start + x, y: exponent - Math.log10(mantissa), at, number, position, p: Number(mantissa + "e-" + exponent) });
    }
  }
  return points;
}

// About six round positions of a chromosome within [from, to].
function positionTicks(chromosome, from, to) {
  const rough = (to - from) / 6;
  const power = 10 ** Math.floor(Math.log10(rough));
  const step = Math.max(1, [1, 2, 5, 10].find((times) => times * power >= rough) * power);
  const ticks = [];
  for (let at = Math.ceil(from / step) * step; at <= to; at += step) {
    const label = step >= 1e5 ? String(Number((at / 1e6).toFixed(2))) + " Mb" : words.grouped(Math.round(at));
    ticks.push({ value: chromosome.start + at - chromosome.first, label });
  }
  return ticks;
}

// Ticks of the x axis: names of chromosomes, or positions where only one is in sight.
function genomeTicks(scale, places) {
  const inSight = places.chromosomes.filter((c) => c.end > scale.min && c.start < scale.max);
  if (inSight.length === 1 && inSight[0].last > inSight[0].first) {
    const [c] = inSight;
    const position = (x) => Math.max(c.first, Math.min(c.first + x - c.start, c.last));
    return positionTicks(c, position(scale.min), position(scale.max));
  }
  const pixels = scale.chart.width / (scale.max - scale.min);
  let free = -Infinity;
  return inSight.map((c) => {
    const value = (Math.max(c.start, scale.min) + Math.min(c.end, scale.max)) / 2;
    const name = words.chromosome(c.number);
    const half = 4.5 * name.length + 3;
    const middle = (value - scale.min) * pixels;
    const fits = middle - half >= free;
    if (fits) free = middle + half;
    return { value, label: fits ? name : "" };
  });
}

// Horizontal lines with their names at the right end; gives the boxes of the names.
function referenceLines(chart, lines) {
  const { ctx, chartArea: area, scales } = chart;
  const boxes = [];
  ctx.save();
  ctx.font = `12px ${Chart.defaults.font.family}`;
  ctx.textAlign = "right";
  ctx.textBaseline = "middle";
  for (const { y, text, colour, dash } of lines) {
    const height = scales.y.getPixelForValue(y);
    ctx.strokeStyle = ctx.fillStyle = colour;
    ctx.lineWidth = 1.25;
    ctx.setLineDash(dash);
    ctx.beginPath();
    ctx.moveTo(area.left, height);
    ctx.lineTo(area.right, height);
    ctx.stroke();
    const width = ctx.measureText(text).width;
    let box = labels.box(area.right - width - 4, height - 17, width + 4, 15);
    if (boxes.some((other) => labels.overlap(box, other))) box = labels.box(box.left, height + 2, width + 4, 15);
    boxes.push(box);
    ctx.setLineDash([]);
    ctx.strokeStyle = theme.colour("page");
    ctx.lineWidth = 4;
    ctx.strokeText(text, area.right - 2, (box.top + box.bottom) / 2);
    ctx.fillText(text, area.right - 2, (box.top + box.bottom) / 2);
  }
  ctx.restore();
  return boxes;
}

function manhattanLines(data) {
  const lines = [{ y: -Math.log10(5e-8), text: "5e-8", colour: theme.colour("genome"), dash: [6, 4] }];
  if (data.study_wide !== null) {
    lines.push({ y: -Math.log10(data.study_wide), text: "EMP2 = 0.05", colour: theme.colour("study"), dash: [] });
  }
  return lines;
}

function markerLines(columns, point, permuted) {
  const emp2At = columns.emp2_at.indexOf(point.at);
  const emp2 = emp2At < 0 ? 1 : columns.emp2[emp2At];
  const lines = [
    words.shortened(columns.name[point.at], 80),
    `chromosome ${words.chromosome(point.number)}, position ${words.grouped(point.position)}`,
    `alleles ${columns.allele_pairs[columns.alleles[point.at]]}`,
    `p ${words.p(point.p)}, ${words.model[columns.model[point.at]]}`,
  ];
  if (permuted) lines.push(`EMP2 ${words.digits(emp2, 3)}`);
  lines.push(`rank ${words.grouped(columns.rank[point.at])}`);
  return lines;
}

// Draws the plot within `box`. order: names of the model's markers, the most important first.
// Gives { chart, places, whole, labels() }.
function manhattan(box, data, order) {
  const columns = data.markers;
  const places = genome(columns);
  const points = decodedMarkers(columns, places);
  const inModel = new Set(columns.in_model);
  const turn = new Map(places.chromosomes.map((c, i) => [c.number, i % 2]));
  const plain = points.filter((point) => !inModel.has(point.at));
  const model = points.filter((point) => inModel.has(point.at));
  const weight = new Map(order.map((name, i) => [name, i]));
  const importance = (point) => weight.get(columns.name[point.at]) ?? order.length;
  model.sort((a, b) => importance(a) - importance(b));

  const lines = manhattanLines(data);
  const top = points.reduce((highest, point) => Math.max(highest, point.y), lines[0].y);
  const radius = points.length > 5000 ? 1.6 : points.length > 1000 ? 2.2 : 3;
  const dots = (colour, which, size) => ({
    data: which,
    backgroundColor: theme.colour(colour),
    borderColor: theme.colour("page"),
    borderWidth: size > 4 ? 1.5 : 0,
    radius: size,
    hoverRadius: size + 2,
    hitRadius: 4,
  });
  let placed = [];

  const annotate = {
    id: "annotate",
    beforeDatasetsDraw(chart) {
      chart.reserved = referenceLines(chart, lines);
    },
    afterDatasetsDraw(chart) {
      const { ctx, chartArea: area, scales } = chart;
      ctx.save();
      ctx.font = `600 12px ${Chart.defaults.font.family}`;
      const named = model
        .filter((point) => point.x >= scales.x.min && point.x <= scales.x.max)
        .map((point) => ({
          x: scales.x.getPixelForValue(point.x),
          y: scales.y.getPixelForValue(point.y),
          text: words.shortened(columns.name[point.at], 24),
        }));
      placed = labels.arrange(named, (text) => ctx.measureText(text).width, 15, area, chart.reserved);
      labels.draw(ctx, placed, theme.colour("ink"), theme.colour("page"));
      ctx.restore();
    },
  };

  const chart = new Chart(box.querySelector("canvas"), {
    type: "scatter",
    data: {
      datasets: [
        dots("accent", model, radius + 2.5),
        dots("tone-a", plain.filter((point) => turn.get(point.number) === 0), radius),
        dots("tone-b", plain.filter((point) => turn.get(point.number) === 1), radius),
      ],
    },
    options: {
      parsing: false,
      interaction: { mode: "nearest", intersect: true },
      layout: { padding: { right: 6 } },
      scales: {
        x: {
          ...places.range,
          afterBuildTicks: (scale) => {
            scale.named = genomeTicks(scale, places);
            scale.ticks = scale.named.map(({ value }) => ({ value }));
          },
          grid: { display: false, borderColor: theme.colour("ink") },
          ticks: {
            autoSkip: false,
            maxRotation: 0,
            callback(_, i) {
              return this.named[i].label;
            },
          },
          title: { display: true, text: "chromosome" },
        },
        y: {
          min: 0,
          max: top * 1.06 + 0.35,
          grid: { color: theme.colour("rule"), drawBorder: false },
          ticks: { precision: 0, maxTicksLimit: 10 },
          title: { display: true, text: "\u2212log\u2081\u2080 p" },
        },
      },
      plugins: {
        legend: { display: false },
        tooltip: tooltip(box, (item) => markerLines(columns, item.raw, data.permuted)),
      },
    },
    plugins: [annotate],
  });
  return { chart, places, whole: places.range, labels: () => placed };
}
