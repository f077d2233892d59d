// Horizontal bars with their values at the ends.

function valuesAtEnds(text) {
  return {
    id: "values",
    afterDatasetsDraw(chart) {
      const { ctx } = chart;
      ctx.save();
      ctx.font = `12px ${Chart.defaults.font.family}`;
      ctx.fillStyle = theme.colour("ink");
      ctx.textBaseline = "middle";
      chart.getDatasetMeta(0).data.forEach((bar, i) => {
        const value = chart.data.datasets[0].data[i];
        ctx.textAlign = value < 0 ? "right" : "left";
        ctx.fillText(text(value), bar.x + (value < 0 ? -6 : 6), bar.y);
      });
      ctx.restore();
    },
  };
}

// items: { label, value }; text(value) stands at the end of a bar, lines(item) in the tooltip.
function bars(box, items, colourOf, text, lines) {
  box.style.height = 26 * items.length + 24 + "px";
  const values = items.map(({ value }) => value);
  // Room for the texts at both ends.
  const low = Math.min(0, ...values);
  const high = Math.max(0, ...values);
  const room = 0.2 * (high - low || 1);
  return new Chart(box.querySelector("canvas"), {
    type: "bar",
    data: {
      labels: items.map(({ label }) => words.shortened(label, 24)),
      datasets: [{ data: values, backgroundColor: values.map((value) => theme.colour(colourOf(value))), barThickness: 16 }],
    },
    options: {
      indexAxis: "y",
      interaction: { mode: "nearest", axis: "y", intersect: false },
      scales: {
        x: {
          min: low < 0 ? low - room : 0,
          max: high > 0 ? high + room : 0,
          ticks: { display: false },
          grid: {
            drawBorder: false,
            drawTicks: false,
            color: ({ tick }) => (tick.value === 0 ? theme.colour("muted") : "transparent"),
          },
        },
        y: { grid: { display: false, drawBorder: false }, ticks: { autoSkip: false, color: theme.colour("ink") } },
      },
      plugins: { legend: { display: false }, tooltip: tooltip(box, (item) => lines(items[item.dataIndex])) },
    },
    plugins: [valuesAtEnds(text)],
  });
}

function coefficientBars(box, learners) {
  const text = (value) => (value < 0 ? "\u2212" : "") + Math.abs(value).toFixed(2);
  return bars(box, learners, (value) => (value < 0 ? "fewer" : "more"), text, (item) => [
    `${item.label}: coefficient ${text(item.value)}`,
    item.markers,
    item.text,
  ]);
}

function importanceBars(box, markers) {
  const text = (value) => value.toFixed(1) + "\u00a0%";
  return bars(box, markers, () => "tone-a", text, (item) => [item.label, text(item.value)]);
}
