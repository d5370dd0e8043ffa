// A chart's picture and its rows as files.
function save(blob, name) {
  const link = element("a", "");
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

// The figure as it is seen: canvases, texts, swatches.
function pictureOf({ figure }) {
  const scale = 2;
  const frame = figure.getBoundingClientRect();
  const picture = element("canvas", "");
  picture.width = scale * frame.width;
  picture.height = scale * frame.height;
  const context = picture.getContext("2d");
  context.scale(scale, scale);
  context.fillStyle = color("paper");
  context.fillRect(0, 0, frame.width, frame.height);
  const placeOf = ({ left, top, width, height }) => [left - frame.left, top - frame.top, width, height];
  for (const canvas of figure.querySelectorAll("canvas"))
    if (canvas.clientHeight) context.drawImage(canvas, ...placeOf(canvas.getBoundingClientRect()));
  context.textBaseline = "middle";
  const texts = document.createTreeWalker(figure, NodeFilter.SHOW_TEXT);
  const range = document.createRange();
  while (texts.nextNode()) {
    const { parentElement: parent, data: text } = texts.currentNode;
    range.selectNodeContents(texts.currentNode);
    const [x, y, width, height] = placeOf(range.getBoundingClientRect());
    if (!width || parent.closest(".tools")) continue;
    const style = getComputedStyle(parent);
    context.font = style.fontWeight + " " + style.fontSize + " " + style.fontFamily;
    context.fillStyle = style.color;
    context.fillText(text.trim(), x, y + height / 2);
  }
  for (const swatch of figure.querySelectorAll(".swatch")) {
    const [x, y, width] = placeOf(swatch.getBoundingClientRect());
    const style = getComputedStyle(swatch);
    context.strokeStyle = style.borderTopColor;
    context.lineWidth = 3;
    context.setLineDash({ dashed: [6, 3], dotted: [3, 3] }[style.borderTopStyle] || []);
    context.beginPath();
    context.moveTo(x, y + 1.5);
    context.lineTo(x + width, y + 1.5);
    context.stroke();
  }
  return picture;
}

const savePicture = (chart) => pictureOf(chart).toBlob((blob) => save(blob, chart.id + ".png"));

// Those in view, of bins the least and the largest values, too.
function rowsInView({ axis, series, graph }) {
  const [low, high] = graph.xAxisRange();
  const parts = axis.thinned ? ["mean", "least", "largest"] : ["mean"];
  const quoted = (text) => '"' + text.replaceAll('"', '""') + '"';
  const lines = [[
    ...(axis.own ? [] : ["first_row", "last_row"]),
    ...(axis.firsts ? [quoted(axis.name)] : []),
    ...series.flatMap(({ name }) => parts.map((part) => quoted(part === "mean" ? name : part + " " + name))),
  ]];
  axis.places.forEach((place, bin) => {
    if (place < low || place > high) return;
    const value = (one, part) => {
      const other = (one.seam || []).find((entry) => entry[0] === bin);
      const sides = other ? { least: Math.min(one.least[bin], other[2]), largest: Math.max(one.largest[bin], other[3]) } : {};
      return sides[part] ?? one[part][bin] ?? "";
    };
    lines.push([
      ...(axis.own ? [] : [axis.firstRow(bin), axis.lastRow(bin)]),
      ...(axis.firsts ? [axis.text(axis.firstTime(bin))] : []),
      ...series.flatMap((one) => parts.map((part) => value(one, part))),
    ]);
  });
  return lines.map((cells) => cells.join() + "\n").join("");
}

const saveRows = (chart) => save(new Blob([rowsInView(chart)], { type: "text/csv" }), chart.id + ".csv");
