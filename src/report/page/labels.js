// Names beside points: no name covers another one, a point that has a name, or leaves the plot.
//
// Names are placed one by one, the most important first, each at the nearest place that is free:
// above its point, beside it, then further up and to the sides, with a thin line to the point. A name
// for which there is no room anywhere is left out.
const labels = {
  overlap(a, b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
  },

  within(box, area) {
    return box.left >= area.left && box.right <= area.right && box.top >= area.top && box.bottom <= area.bottom;
  },

  box(left, top, width, height) {
    return { left, top, right: left + width, bottom: top + height };
  },

  // Places for a name of a size at a point, nearest first.
  *places(point, width, height) {
    const centred = point.x - width / 2;
    yield [centred, point.y - height - 8];
    yield [point.x + 9, point.y - height / 2];
    yield [point.x - width - 9, point.y - height / 2];
    yield [centred, point.y + 8];
    for (let step = 1; step <= 24; ++step) {
      for (const aside of [0, 0.5, -0.5, 1, -1, 1.6, -1.6]) {
        yield [centred + aside * width, point.y - height - 8 - step * (height + 2)];
        if (step > 6) yield [centred + aside * width, point.y + 8 + (step - 6) * (height + 2)];
      }
    }
  },

  // points: { x, y, text }; taken: boxes that are to stay free. Gives [{ text, box, point }].
  arrange(points, widthOf, height, area, taken) {
    const occupied = [...taken, ...points.map((p) => labels.box(p.x - 5, p.y - 5, 10, 10))];
    const placed = [];
    for (const point of points) {
      const width = widthOf(point.text);
      for (const [left, top] of labels.places(point, width, height)) {
        const box = labels.box(left, top, width, height);
        if (!labels.within(box, area) || occupied.some((other) => labels.overlap(box, other))) continue;
        occupied.push(box);
        placed.push({ text: point.text, box, point });
        break;
      }
    }
    return placed;
  },

  draw(context, placed, ink, page) {
    context.textBaseline = "middle";
    context.textAlign = "left";
    context.lineJoin = "round";
    for (const { text, box, point } of placed) {
      const x = Math.max(box.left, Math.min(point.x, box.right));
      const y = Math.max(box.top, Math.min(point.y, box.bottom));
      if (Math.hypot(x - point.x, y - point.y) > 12) {
        context.strokeStyle = ink;
        context.lineWidth = 0.75;
        context.beginPath();
        context.moveTo(x, y);
        context.lineTo(point.x, point.y);
        context.stroke();
      }
    }
    for (const { text, box } of placed) {
      const middle = (box.top + box.bottom) / 2;
      context.strokeStyle = page;
      context.lineWidth = 4;
      context.strokeText(text, box.left, middle);
      context.fillStyle = ink;
      context.fillText(text, box.left, middle);
    }
  },
};
