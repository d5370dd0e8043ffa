// Bands of twice the standard uncertainty, to either side of the angles, of zero for residuals. A
// bin's is the largest of its rows, so that no row's own reaches out of it.
const uncertainties = data.charts.find(({ id }) => id === "uncertainties");
const halfWidth = (i, bin) => {
  const { mean, largest = mean } = uncertainties.series[i];
  return mean[bin] === null ? null : 2 * largest[bin];
};

// What of the residuals' bands is in view: nine in ten, as single ones may be without bounds.
const usualBands = (chart) =>
  chart.bands !== "zero" ? [] : chart.series.flatMap((series, i) => {
    const halves = series.mean.map((_, bin) => halfWidth(i, bin)).filter((half) => half !== null);
    const usual = halves.sort((a, b) => a - b)[Math.floor(0.9 * halves.length)];
    return usual === undefined ? [] : [-usual, usual];
  });

// Of a series in a row of the chart's table, in its unit; null where there is none.
function bandOf(chart, i, row) {
  const cell = chart.table.rows[row][i + 1];
  const half = halfWidth(i, chart.table.binOf[row]);
  if (!cell || half === null) return null;
  return chart.bands === "zero" ? [-half, half] : [cell[0] - half, cell[2] + half];
}

// Stretches of a drawn series without a gap, as canvas points; of a single row two pixels.
function stretchesOf(chart, { points, setName, dygraph: graph }) {
  const i = chart.series.findIndex(({ name }) => name === setName);
  const stretches = [[]];
  for (const point of points) {
    const band = bandOf(chart, i, point.idx);
    if (band)
      stretches[stretches.length - 1].push({
        x: point.canvasx,
        low: graph.toDomYCoord(band[0]),
        high: graph.toDomYCoord(band[1]),
      });
    else stretches.push([]);
  }
  const widened = ([only]) => [{ ...only, x: only.x - 1 }, { ...only, x: only.x + 1 }];
  return stretches
    .filter((stretch) => stretch.length)
    .map((stretch) => (stretch.length === 1 ? widened(stretch) : stretch));
}

// Plotters of a chart: areas under its lines; for residuals, whose areas would lie on each other,
// their edges alone, over the lines, on margins of paper that set them off.
const trace = (context, stretch, edge) => {
  for (const point of stretch) context.lineTo(point.x, point[edge]);
};

const plotBands = (chart) => (series) => {
  const { drawingContext: context, color } = series;
  if (chart.kind === "dots") return plotBars(context, color, stretchesOf(chart, series));
  context.fillStyle = color;
  context.globalAlpha = 0.18;
  for (const stretch of stretchesOf(chart, series)) {
    context.beginPath();
    trace(context, stretch, "high");
    trace(context, stretch.reverse(), "low");
    context.fill();
  }
};

// Of points that stand alone.
const plotBars = (context, color, stretches) => {
  context.strokeStyle = color;
  context.lineWidth = 1;
  context.beginPath();
  for (const { x, low, high } of stretches.flat()) {
    context.moveTo(x, low);
    context.lineTo(x, high);
  }
  context.stroke();
};

const plotBandEdges = (chart, width, colorOf) => (series) => {
  const { drawingContext: context } = series;
  context.strokeStyle = colorOf(series);
  context.lineWidth = width;
  for (const stretch of stretchesOf(chart, series))
    for (const edge of ["high", "low"]) {
      context.beginPath();
      trace(context, stretch, edge);
      context.stroke();
    }
};
