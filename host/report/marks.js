// What a chart shows beside its series: limits, the reference, and below it how many of the rows
// have no angles, or none that are good.
const color = (name) =>
  getComputedStyle(document.documentElement).getPropertyValue("--" + name).trim();

function drawLimits(context, area, graph, chart) {
  const names = new Map(); // of the series with a limit at a value
  chart.limits.forEach((pair, i) => {
    for (const value of pair || [])
      names.set(value, [...(names.get(value) || []), i]);
  });
  context.lineWidth = 1.5;
  context.textAlign = "right";
  for (const [value, series] of names) {
    const y = graph.toDomYCoord(value);
    if (y < area.y || y > area.y + area.h) continue;
    series.forEach((i, turn) => {
      context.strokeStyle = color("series-" + i);
      context.setLineDash([6, 6 * (2 * series.length - 1)]);
      context.lineDashOffset = -12 * turn;
      context.beginPath();
      context.moveTo(area.x, y);
      context.lineTo(area.x + area.w, y);
      context.stroke();
    });
    context.setLineDash([]);
    context.fillStyle = color("faint");
    const label = "limit of " + series.map((i) => chart.series[i].name).join(" and ");
    context.fillText(label, area.x + area.w - 6, y - area.y < 16 ? y + 14 : y - 5);
  }
}

function drawReference(context, area, graph) {
  const x = graph.toDomXCoord(chartX(data.reference));
  if (x < area.x || x > area.x + area.w) return;
  context.strokeStyle = color("faint");
  context.lineWidth = 1.5;
  context.setLineDash([2, 3]);
  context.beginPath();
  context.moveTo(x, area.y);
  context.lineTo(x, area.y + area.h);
  context.stroke();
  context.setLineDash([]);
}

const lanes = [
  { marks: data.refused, name: "refused", color: "refused" },
  { marks: data.noOrientation, name: "no orientation", color: "no-orientation" },
  { marks: data.notGood, name: "not good", color: "not-good" },
].filter(({ marks }) => marks.length);
const laneHeight = 14; // CSS pixels

// A lane for each kind of row: the darker a place, the larger its share of the rows there; a single
// row can be seen.
function drawStrip(strip, area, graph, pixelRatio, font) {
  const width = strip.parentElement.clientWidth;
  strip.style.height = lanes.length * laneHeight + "px";
  strip.width = width * pixelRatio;
  strip.height = lanes.length * laneHeight * pixelRatio;
  const context = strip.getContext("2d");
  context.scale(pixelRatio, pixelRatio);
  context.font = font;
  context.textAlign = "right";
  context.textBaseline = "middle";

  const [low, high] = graph.xAxisRange();
  const shownBins = [];
  for (let bin = 0; bin < binCount; ++bin) {
    const x = chartX(middleX(bin));
    if (x >= low && x <= high) shownBins.push(bin);
  }
  const columnWidth = Math.max(2, Math.min(8, area.w / Math.max(1, shownBins.length)));
  const columnOf = (bin) =>
    Math.floor((graph.toDomXCoord(chartX(middleX(bin))) - area.x) / columnWidth);
  const rows = new Map();
  for (const bin of shownBins)
    rows.set(columnOf(bin), (rows.get(columnOf(bin)) || 0) + lastRow(bin) - firstRow(bin) + 1);

  lanes.forEach((lane, i) => {
    const top = i * laneHeight + 2;
    context.fillStyle = color("band");
    context.fillRect(area.x, top, area.w, laneHeight - 4);
    context.fillStyle = color(lane.color);
    context.fillText(lane.name, area.x - 6, top + laneHeight / 2 - 2);
    const counts = new Map();
    for (const [bin, count] of lane.marks) {
      const column = columnOf(bin);
      if (rows.has(column)) counts.set(column, (counts.get(column) || 0) + count);
    }
    for (const [column, count] of counts) {
      context.globalAlpha = 0.3 + 0.7 * Math.min(1, count / rows.get(column));
      context.fillRect(area.x + column * columnWidth, top, columnWidth, laneHeight - 4);
    }
    context.globalAlpha = 1;
  });
}
