// Drag across a chart to see that part of its x axis, double-click to see all of it.
//
// zoom(chart, whole, changed): `whole` is { min, max } of everything; changed(range) is called
// before each change is drawn. Gives { show(range), range(), end() }.
function zoom(chart, whole, changed) {
  const box = chart.canvas.parentElement;
  const leastDrag = 8;
  let begin = null;
  let brush = null;

  const scale = () => chart.scales.x;
  const range = () => ({ min: scale().min, max: scale().max });

  function show(wanted) {
    const least = (whole.max - whole.min) / 1e6;
    if (wanted.max - wanted.min < least) return;
    chart.options.scales.x.min = Math.max(wanted.min, whole.min);
    chart.options.scales.x.max = Math.min(wanted.max, whole.max);
    const { min, max } = chart.options.scales.x;
    changed({ min, max });
    chart.update("none");
  }

  function inside(event) {
    const { left, right } = chart.chartArea;
    const x = event.clientX - chart.canvas.getBoundingClientRect().left;
    return Math.max(left, Math.min(x, right));
  }

  function paint(from, to) {
    const { top, bottom } = chart.chartArea;
    const left = Math.min(from, to);
    const lengths = { left, top, width: Math.abs(to - from), height: bottom - top };
    for (const [side, length] of Object.entries(lengths)) brush.style[side] = length + "px";
  }

  function stop() {
    if (brush) brush.remove();
    begin = brush = null;
  }

  function down(event) {
    if (event.button !== 0 || !event.isPrimary) return;
    begin = inside(event);
  }

  function move(event) {
    if (begin === null) return;
    const x = inside(event);
    if (!brush && Math.abs(x - begin) >= leastDrag) {
      brush = document.createElement("div");
      brush.className = "brush";
      box.append(brush);
    }
    if (brush) paint(begin, x);
  }

  function up(event) {
    if (begin !== null && brush) {
      const ends = [begin, inside(event)].map((x) => scale().getValueForPixel(x));
      show({ min: Math.min(...ends), max: Math.max(...ends) });
    }
    stop();
  }

  const gestures = new AbortController();
  const { signal } = gestures;
  chart.canvas.addEventListener("pointerdown", down, { signal });
  chart.canvas.addEventListener("dblclick", () => show(whole), { signal });
  addEventListener("pointermove", move, { signal });
  addEventListener("pointerup", up, { signal });
  addEventListener("pointercancel", stop, { signal });
  return { show, range, end: () => gestures.abort() };
}
