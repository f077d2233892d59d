// A chart's tooltip as an element of the page, so that long names wrap and can be read.
//
// tooltip(box, lines) gives the tooltip options of a chart within `box`; lines(point) are the texts
// for a point of its data, the first one as a heading.
function tooltip(box, lines) {
  const tip = document.createElement("div");
  tip.className = "tip";
  tip.setAttribute("role", "status");
  tip.hidden = true;
  box.querySelectorAll(".tip").forEach((old) => old.remove());
  box.append(tip);

  function fill(texts) {
    tip.replaceChildren(
      ...texts.map((text, i) => {
        const line = document.createElement(i === 0 ? "strong" : "div");
        line.textContent = text;
        return line;
      })
    );
  }

  // Beside the point, on the side that has room.
  function place(x, y) {
    const room = box.clientWidth - tip.offsetWidth;
    const left = x + 14 <= room ? x + 14 : x - 14 - tip.offsetWidth;
    const top = Math.min(y - 10, box.clientHeight - tip.offsetHeight);
    tip.style.left = Math.max(0, Math.min(left, room)) + "px";
    tip.style.top = Math.max(0, top) + "px";
  }

  function external({ tooltip: shown }) {
    const texts = shown.opacity && shown.dataPoints ? lines(shown.dataPoints[0]) : null;
    tip.hidden = !texts;
    if (!texts) return;
    fill(texts);
    place(shown.caretX, shown.caretY);
  }

  return { enabled: false, external };
}
