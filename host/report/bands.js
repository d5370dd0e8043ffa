// Bands of twice the standard uncertainty, to either side of the angles, of zero for residuals. A
// bin's is the largest of its rows, so that what lies outside the band is outside its row's own.
const uncertainties = data.charts.find(({ id }) => id === "uncertainties");
const halfWidth = (i, bin) => {
  const { mean, largest = mean } = uncertainties.series[i];
  return mean[bin] === null ? null : 2 * largest[bin];
};

// A band that is in view by itself, whatever the single rows: the middle one of the residuals'.
const usualBands = (chart) =>
  chart.bands !== "zero" ? [] : chart.series.flatMap((series, i) => {
    const halves = series.mean.map((_, bin) => halfWidth(i, bin)).filter((half) => half !== null);
    const usual = halves.sort((a, b) => a - b)[halves.length >> 1];
    return usual === undefined ? [] : [-usual, usual];
  });

// Of a series in a row of the chart's table, in its unit; null where there is none.
function bandOf(chart, i, row) {
  const cell = chart.table.rows[row][i + 1];
  const half = halfWidth(i, chart.table.binOf[row]);
  if (!cell || half === null) return null;
  return chart.bands === "zero" ? [-half, half] : [cell[0] - half, cell[2] + half];
}

// Rows without a gap between them, as canvas points; of a single one two pixels can be seen.
function fillBand(context, points, withEdges) {
  if (points.length === 1) points = [-1, 1].map((shift) => ({ ...points[0], x: points[0].x + shift }));
  const path = (lines) => {
    context.beginPath();
    for (const line of lines)
      line.forEach(([x, y], i) => (i || line !== lines[0] ? context.lineTo(x, y) : context.moveTo(x, y)));
  };
  const high = points.map(({ x, high }) => [x, high]);
  const low = points.map(({ x, low }) => [x, low]);
  path([high, [...low].reverse()]);
  context.globalAlpha = 0.18;
  context.fill();
  context.globalAlpha = 0.8;
  if (withEdges)
    for (const edge of [high, low]) {
      path([edge]);
      context.stroke();
    }
}

function drawBands(context, area, graph, chart) {
  context.save();
  context.beginPath();
  context.rect(area.x, area.y, area.w, area.h);
  context.clip();
  context.lineWidth = 1;
  chart.series.forEach((_, i) => {
    if (!graph.visibility()[i]) return;
    context.fillStyle = context.strokeStyle = color("series-" + i);
    let points = [];
    const finish = () => {
      if (points.length) fillBand(context, points, chart.bands === "zero");
      points = [];
    };
    chart.table.rows.forEach(([x], row) => {
      const band = bandOf(chart, i, row);
      if (band)
        points.push({
          x: graph.toDomXCoord(x),
          low: graph.toDomYCoord(band[0]),
          high: graph.toDomYCoord(band[1]),
        });
      else finish();
    });
    finish();
  });
  context.restore();
}
