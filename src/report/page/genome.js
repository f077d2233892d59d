// Markers along the genome: chromosomes end to end, and what stands on the axis below them.

// Where the chromosomes lie: { chromosomes, by: number to chromosome, range: of x }.
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
  const by = new Map(chromosomes.map((c) => [c.number, c]));
  return { chromosomes, by, range: { min: -3 * gap, max: start + 2 * gap } };
}

// p is 1000 e + m for m/100 * 10^-e.
function decodedP(code) {
  const mantissa = (code % 1000) / 100;
  const exponent = Math.floor(code / 1000);
  return { p: Number(mantissa + "e-" + exponent), height: exponent - Math.log10(mantissa) };
}

// The columns as points; `at` is a point's place in them.
function decodedMarkers(columns, places) {
  const points = [];
  let at = 0;
  for (const [number, length] of columns.runs) {
    const chromosome = places.by.get(number);
    const flat = chromosome.first === chromosome.last;
    let position = 0;
    for (let i = 0; i < length; ++i, ++at) {
      position += columns.position[at];
      // Without distances markers stand in their order, in the middle where there is but one.
      const along = flat ? ((i + 0.5) / length) * chromosome.width : position - chromosome.first;
      const { p, height } = decodedP(columns.p[at]);
      points.push({ x: chromosome.start + along, y: height, at, number, position, p });
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
    const megabases = Number((at / 1e6).toFixed(2)) + " Mb";
    const label = step >= 1e4 && to >= 1e6 ? megabases : words.grouped(Math.round(at));
    ticks.push({ value: chromosome.start + at - chromosome.first, label });
  }
  return ticks;
}

function inSight(places, range) {
  return places.chromosomes.filter((c) => c.end > range.min && c.start < range.max);
}

// Ticks of the x axis: names of chromosomes as far as there is room for them, or positions where
// only one chromosome is in sight.
function genomeTicks(scale, places) {
  const seen = inSight(places, scale);
  if (seen.length === 1 && seen[0].last > seen[0].first) {
    const [c] = seen;
    const position = (x) => Math.max(c.first, Math.min(c.first + x - c.start, c.last));
    return positionTicks(c, position(scale.min), position(scale.max));
  }
  const pixels = scale.chart.width / (scale.max - scale.min);
  let free = -Infinity;
  return seen.map((c) => {
    const value = (Math.max(c.start, scale.min) + Math.min(c.end, scale.max)) / 2;
    const name = words.chromosome(c.number);
    const half = 4.5 * name.length + 3;
    const middle = (value - scale.min) * pixels;
    const fits = middle - half >= free;
    if (fits) free = middle + half;
    return { value, label: fits ? name : "" };
  });
}
