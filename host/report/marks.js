// What a chart shows beside its series: limits, the reference, witnesses, and below it how many of the rows
// have no angles, or none that are good.
const color = (name) =>
  getComputedStyle(document.documentElement).getPropertyValue("--" + name).trim();

function drawLimits(context, area, graph, chart) {
  const seriesAt = new Map(); // those with a limit at a value
  chart.limits.forEach((pair, i) => {
    for (const value of pair || [])
      seriesAt.set(value, [...(seriesAt.get(value) || []), i]);
  });
  context.lineWidth = 1.5;
  for (const [value, series] of seriesAt) {
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
  }
}

// An upright line, and whether it is within the area.
function drawUpright(context, area, x, dashes) {
  if (x < area.x || x > area.x + area.w) return false;
  context.setLineDash(dashes);
  context.beginPath();
  context.moveTo(x, area.y);
  context.lineTo(x, area.y + area.h);
  context.stroke();
  context.setLineDash([]);
  return true;
}

// Of a row's bin.
const xOfRow = (graph, axis, row) => graph.toDomXCoord(axis.places[axis.binOf(row)]);

function drawReference(context, area, graph, axis) {
  context.strokeStyle = color("faint");
  context.lineWidth = 1.5;
  drawUpright(context, area, xOfRow(graph, axis, data.reference), [2, 3]);
}

// Grounds where the clock jumps.
function drawBreaks(context, area, graph, { stretches }) {
  context.fillStyle = color("gap");
  for (let i = 1; i < stretches.length; ++i) {
    const from = Math.max(area.x, graph.toDomXCoord(stretches[i - 1].to));
    const to = Math.min(area.x + area.w, graph.toDomXCoord(stretches[i].from));
    if (to > from) context.fillRect(from, area.y, to - from, area.h);
  }
}

// A line where each begins, with its name along it.
function drawWitnesses(context, area, graph, axis) {
  context.save();
  context.strokeStyle = context.fillStyle = color("not-good");
  context.lineWidth = 1;
  context.textAlign = "right";
  const namesAt = new Map();
  for (const [row, name] of data.witnesses || [])
    namesAt.set(row, [...new Set([...(namesAt.get(row) || []), name])]);
  for (const [row, names] of namesAt) {
    const x = xOfRow(graph, axis, row);
    if (!drawUpright(context, area, x, [6, 3])) continue;
    context.save();
    context.translate(x - 3, area.y + 3);
    context.rotate(-Math.PI / 2);
    context.fillText(names.join(", "), 0, 0);
    context.restore();
  }
  context.restore();
}

const lanes = [
  { marks: data.refused, name: "refused", color: "refused" },
  { marks: data.noOrientation, name: "no orientation", color: "no-orientation" },
  { marks: data.notGood, name: "not good", color: "not-good" },
].filter(({ marks }) => marks && marks.length);
const laneHeight = 14; // CSS pixels

// Columns across a chart, of whole pixels of the canvas so that no edge between them shows.
function columnsOf(area, graph, axis, pixelRatio) {
  const width = Math.round(2 * pixelRatio) / pixelRatio;
  const size = Math.ceil(area.w / width);
  const middles = [];
  for (let bin = 0; bin < axis.binCount; ++bin)
    middles.push(graph.toDomXCoord(axis.places[bin]) - area.x);
  return {
    width,
    size,
    start: Math.round(area.x * pixelRatio) / pixelRatio,
    halfWay: (bin, to) =>
      to in middles && !axis.brokenBefore.has(Math.max(bin, to)) ? (middles[to] - middles[bin]) / 2 : 0,
    // Counts of bins, each over all columns that it reaches on both sides, one at least.
    filled(binCounts, reach) {
      const counts = new Array(size).fill(0);
      for (const [bin, count] of binCounts) {
        const first = Math.floor((middles[bin] + reach(bin, bin - 1)) / width);
        const end = Math.round((middles[bin] + reach(bin, bin + 1)) / width);
        const behind = Math.min(Math.max(first + 1, end), size);
        for (let column = Math.max(0, first); column < behind; ++column) counts[column] += count;
      }
      return counts;
    },
  };
}

// The darker a place, the larger the share of marked rows around it; a single row can be seen.
function paintLane(context, top, columns, counts, rows) {
  const inSpan = (column) => counts[column] || (counts[column - 1] && counts[column + 1]);
  const sum = (values, from, behind) => values.slice(from, behind).reduce((a, b) => a + b);
  for (let from = 0, behind; from < columns.size; from = behind) {
    for (behind = from + 1; inSpan(from) && inSpan(behind);) ++behind;
    for (let column = from; inSpan(from) && column < behind; ++column) {
      const around = [Math.max(from, column - 4), Math.min(behind, column + 5)];
      context.globalAlpha = 0.3 + 0.7 * sum(counts, ...around) / sum(rows, ...around);
      context.fillRect(columns.start + column * columns.width, top, columns.width, laneHeight - 4);
    }
  }
  context.globalAlpha = 1;
}

// A lane for each kind of row. Bins reach half way to their neighbours, those with a mark no further
// than 4 pixels to one without.
function drawStrip(strip, area, graph, axis, pixelRatio, font) {
  const width = strip.parentElement.clientWidth;
  strip.style.height = lanes.length * laneHeight + "px";
  strip.width = width * pixelRatio;
  strip.height = lanes.length * laneHeight * pixelRatio;
  const context = strip.getContext("2d");
  context.scale(pixelRatio, pixelRatio);
  context.font = font;
  context.textAlign = "right";
  context.textBaseline = "middle";

  const columns = columnsOf(area, graph, axis, pixelRatio);
  const { halfWay } = columns;
  const rowsIn = (_, bin) => [bin, axis.lastRow(bin) - axis.firstRow(bin) + 1];
  const rows = columns.filled(Array.from({ length: axis.binCount }, rowsIn), halfWay);
  lanes.forEach((lane, i) => {
    const top = i * laneHeight + 2;
    context.fillStyle = color("band");
    context.fillRect(area.x, top, area.w, laneHeight - 4);
    context.fillStyle = color(lane.color);
    context.fillText(lane.name, area.x - 6, top + laneHeight / 2 - 2, area.x - 8); // narrower where it would not fit
    const marked = new Set(lane.marks.map(([bin]) => bin));
    const reach = (bin, to) =>
      marked.has(to) ? halfWay(bin, to) : Math.max(-4, Math.min(4, halfWay(bin, to)));
    paintLane(context, top, columns, columns.filled(lane.marks, reach), rows);
  });
}
