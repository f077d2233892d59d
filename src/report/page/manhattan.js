// Every marker by chromosome, position and smallest p.

function manhattanLines(data) {
  const genomeWide = theme.colour("genome");
  const lines = [{ y: -Math.log10(5e-8), text: "5e-8", colour: genomeWide, dash: [6, 4] }];
  if (data.study_wide !== null) {
    const y = -Math.log10(data.study_wide);
    lines.push({ y, text: "EMP2 = 0.05", colour: theme.colour("study"), dash: [] });
  }
  return lines;
}

// Draws a line across the plot; gives the box that it takes.
function referenceLine(chart, { y, colour, dash }) {
  const { ctx, chartArea: area, scales } = chart;
  const height = scales.y.getPixelForValue(y);
  ctx.strokeStyle = colour;
  ctx.lineWidth = 1.25;
  ctx.setLineDash(dash);
  ctx.beginPath();
  ctx.moveTo(area.left, height);
  ctx.lineTo(area.right, height);
  ctx.stroke();
  ctx.setLineDash([]);
  return labels.box(area.left, height - 2, area.right - area.left, 4);
}

// The lines, and their names at the right end; gives all boxes that they take.
function referenceLines(chart, lines) {
  const { ctx, chartArea: area } = chart;
  ctx.save();
  ctx.font = `12px ${Chart.defaults.font.family}`;
  const strips = lines.map((line) => referenceLine(chart, line));
  const names = [];
  lines.forEach(({ text, colour }, i) => {
    const width = ctx.measureText(text).width;
    const left = area.right - width - 4;
    let box = labels.box(left, strips[i].top - 15, width, 15);
    const taken = names.some(({ box: other }) => labels.overlap(box, other));
    if (taken) box = labels.box(left, strips[i].bottom, width, 15);
    names.push({ text, box, colour });
  });
  for (const name of names) labels.write(ctx, name, name.colour, theme.colour("page"));
  ctx.restore();
  return [...strips, ...names.map(({ box }) => box)];
}

function markerLines(columns, point, permuted) {
  const { at } = point;
  const alleles = columns.allele_pairs[columns.alleles[at]];
  const emp2At = columns.emp2_at.indexOf(at);
  const emp2 = emp2At < 0 ? 1 : columns.emp2[emp2At];
  return [
    columns.name[at],
    `chromosome ${words.chromosome(point.number)}, position ${words.grouped(point.position)}`,
    ...(alleles ? [(alleles.includes("/") ? "alleles " : "counted allele ") + alleles] : []),
    `p ${words.p(point.p)}, ${words.model[columns.model[at]]}`,
    ...(permuted ? [`EMP2 ${words.digits(emp2, 3)}`] : []),
    ...(columns.rank[at] > 0 ? [`rank ${words.grouped(columns.rank[at])}`] : []),
  ];
}

// Draws the lines below the points and names the model's markers, the most important ones first.
function annotations(lines, points, nameOf) {
  let taken = [];
  let placed = [];
  return {
    id: "annotations",
    placed: () => placed,
    beforeDatasetsDraw(chart) {
      taken = referenceLines(chart, lines);
    },
    afterDatasetsDraw({ ctx, chartArea: area, scales: { x, y } }) {
      ctx.save();
      ctx.font = `600 12px ${Chart.defaults.font.family}`;
      const named = points
        .filter((point) => point.x >= x.min && point.x <= x.max)
        .map((point) => ({
          x: x.getPixelForValue(point.x),
          y: y.getPixelForValue(point.y),
          text: words.shortened(nameOf(point), 24),
        }));
      placed = labels.arrange(named, (text) => ctx.measureText(text).width, 15, area, taken);
      labels.draw(ctx, placed, theme.colour("ink"), theme.colour("page"));
      ctx.restore();
    },
  };
}

// Dots are as large as their number allows.
function dotRadius(number) {
  return number > 5000 ? 1.6 : number > 1000 ? 2.2 : 3;
}

function dots(colour, points, radius) {
  const emphasised = colour === "accent";
  return {
    data: points,
    backgroundColor: theme.colour(colour),
    borderColor: theme.colour("page"),
    borderWidth: emphasised ? 1.5 : 0,
    radius,
    hoverRadius: radius + 2,
    hitRadius: 4,
    clip: { left: 0, right: 0, top: 8, bottom: 8 },
  };
}

function manhattanScales(places, top) {
  return {
    x: {
      ...places.range,
      afterBuildTicks(scale) {
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
      max: Math.ceil(top + 0.4),
      grid: { color: theme.colour("rule"), drawBorder: false },
      ticks: { precision: 0, maxTicksLimit: 10 },
      title: { display: true, text: "\u2212log\u2081\u2080 p" },
    },
  };
}

// Draws the plot within `box`. `order`: names of the model's markers, the most important first.
// Gives { chart, places, labels(), resize(range) }.
function manhattan(box, data, order) {
  const columns = data.markers;
  const places = genome(columns);
  const points = decodedMarkers(columns, places);
  const nameOf = (point) => columns.name[point.at];

  const inModel = new Set(columns.in_model);
  const turn = new Map(places.chromosomes.map((c, i) => [c.number, i % 2]));
  const model = points.filter((point) => inModel.has(point.at));
  const weight = new Map(order.map((name, i) => [name, i]));
  const importance = (point) => weight.get(nameOf(point)) ?? order.length;
  model.sort((a, b) => importance(a) - importance(b));
  const plain = [0, 1].map((side) =>
    points.filter((point) => !inModel.has(point.at) && turn.get(point.number) === side)
  );

  const lines = manhattanLines(data);
  const top = points.reduce((highest, point) => Math.max(highest, point.y), lines[0].y);
  const radius = dotRadius(points.length);
  const notes = annotations(lines, model, nameOf);
  const chart = new Chart(box.querySelector("canvas"), {
    type: "scatter",
    data: {
      datasets: [
        dots("accent", model, radius + 2.5),
        dots("tone-a", plain[0], radius),
        dots("tone-b", plain[1], radius),
      ],
    },
    options: {
      parsing: false,
      interaction: { mode: "nearest", intersect: true },
      layout: { padding: { right: 6 } },
      scales: manhattanScales(places, top),
      plugins: {
        legend: { display: false },
        tooltip: tooltip(box, (item) => markerLines(columns, item.raw, data.permuted)),
      },
    },
    plugins: [notes],
  });

  // For what is in sight.
  function resize({ min, max }) {
    const seen = plain.flat().filter((point) => point.x >= min && point.x <= max).length;
    chart.data.datasets.slice(1).forEach((dataset) => {
      dataset.radius = dotRadius(seen);
      dataset.hoverRadius = dataset.radius + 2;
    });
  }
  return { chart, places, labels: notes.placed, resize };
}
