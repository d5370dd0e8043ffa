const degrees = (value) => value.toFixed(6);

// Labels of a range of values with just the decimals that their spacing needs.
const tickLabel = (value, granularity, option, chart) => {
  const [low, high] = chart.yAxisRange(0);
  const decimals = Math.ceil(1 - Math.log10(Math.abs(high - low) || 1));
  if (decimals > 5 && value) return value.toExponential(1);
  return Math.abs(value) >= 1e7 ? shown(value) : value.toFixed(Math.max(0, decimals));
};

const valuesOf = (rows) => rows.flatMap((row) => row.slice(1).flatMap((cell) => (cell ? [cell[0], cell[2]] : [])));
const extremes = (values) => values.reduce(([low, high], value) => [Math.min(low, value), Math.max(high, value)],
  [Infinity, -Infinity]);

// The charted values and others, with a margin; whole decades of logarithms.
function rangeWith(others, chart) {
  const [low, high] = extremes([...others, ...valuesOf(chart.table.rows)]);
  if (chart.log) return [Math.floor(low), Math.max(Math.ceil(high), Math.floor(low) + 1)];
  if (chart.kind === "bars") return [0, 1.05 * high];
  const margin = (high - low) / 20;
  return [low - margin, high + margin];
}

const charts = [];
let fontSize = 13; // CSS pixels
let ratio = null; // of a canvas' pixels to those of the page, null for the screen's

// The two edges of the band, so that the spike of a single row stands out.
function plotEdges({ points, drawingContext: context, plotArea, color, strokeWidth, setName, dygraph }) {
  context.setLineDash(dygraph.getOption("strokePattern", setName) || []);
  context.strokeStyle = color;
  context.lineWidth = strokeWidth;
  for (const edge of ["y_top", "y_bottom"]) {
    context.beginPath();
    let open = false;
    for (const point of points) {
      const y = plotArea.y + plotArea.h * point[edge];
      if (Number.isNaN(y)) open = false;
      else if (open) context.lineTo(point.canvasx, y);
      else context.moveTo(point.canvasx, y);
      open = !Number.isNaN(y);
    }
    context.stroke();
  }
  context.setLineDash([]);
}

// Single points, of each series in a shape of its own.
const shapes = ["●", "×", "△"];
function plotDots({ points, drawingContext: context, color, setName, dygraph }) {
  const shape = dygraph.indexFromSetName(setName) - 1;
  context.strokeStyle = context.fillStyle = color;
  context.lineWidth = 1.3;
  context.beginPath();
  const lines = (x, y, ...corners) =>
    corners.forEach(([dx, dy], i) => (i % 2 ? context.lineTo(x + dx, y + dy) : context.moveTo(x + dx, y + dy)));
  for (const { canvasx: x, canvasy: y } of points) {
    if (Number.isNaN(y)) continue;
    if (shape === 1) lines(x, y, [-2.5, -2.5], [2.5, 2.5], [-2.5, 2.5], [2.5, -2.5]);
    else if (shape === 2) lines(x, y, [-3, 2], [3, 2], [3, 2], [0, -3], [0, -3], [-3, 2]);
    else {
      context.moveTo(x + 1.8, y);
      context.arc(x, y, 1.8, 0, 2 * Math.PI);
    }
  }
  if (shape) context.stroke();
  else context.fill();
}

// The first series as bars from 0, each up to the next point; others as lines.
function plotHistogram(series) {
  const { points, drawingContext: context, color, setName, dygraph, plotArea } = series;
  if (dygraph.indexFromSetName(setName) > 1) return Dygraph.Plotters.linePlotter(series);
  context.fillStyle = color;
  points.slice(0, -1).forEach(({ canvasx: x, canvasy: y }, i) =>
    context.fillRect(x, y, points[i + 1].canvasx - x - 0.5, plotArea.y + plotArea.h - y));
}

const plottersOf = (chart) =>
  chart.kind === "bars" ? [plotHistogram] : [
    ...(chart.bands === "value" ? [plotBands(chart)] : []),
    ...(chart.axis.thinned ? [Dygraph.Plotters.errorPlotter, plotEdges] : []),
    chart.kind === "dots" ? plotDots : Dygraph.Plotters.linePlotter,
    ...(chart.bands === "zero"
      ? [plotBandEdges(chart, 5, () => color("paper")), plotBandEdges(chart, 2, (series) => series.color)]
      : []),
  ];

function drawUnder(context, area, graph, chart) {
  context.save();
  context.font = fontSize - 1 + "px system-ui, sans-serif";
  drawBreaks(context, area, graph, chart.axis);
  if (chart.limits) drawLimits(context, area, graph, chart);
  if (chart.axis === axes[0]) {
    if (data.reference !== undefined) drawReference(context, area, graph, chart.axis);
    drawWitnesses(context, area, graph, chart.axis);
    if (lanes.length) drawStrip(chart.strip, area, graph, chart.axis, ratio || devicePixelRatio || 1, context.font);
  }
  context.restore();
}

// So that series can be told apart without their colours.
const dashes = [null, [9, 3], [3, 2]];
const borders = ["solid", "dashed", "dotted"];

const element = (tag, className, text = "") => {
  const made = document.createElement(tag);
  made.className = className;
  made.textContent = text;
  return made;
};

// The keys of the series, which hide and show them and give their values under the pointer.
function makeKeys(parent, chart) {
  chart.values = chart.series.map((series, i) => {
    const label = element("label", "");
    const box = element("input", "");
    box.type = "checkbox";
    box.checked = true;
    box.addEventListener("change", () => chart.graph.setVisibility(i, box.checked));
    const swatch = element("span", "swatch");
    swatch.style.borderTop = "3px " + (chart.kind ? "solid" : borders[i]) + " var(--series-" + i + ")";
    swatch.hidden = chart.kind === "dots";
    const value = element("span", "");
    const mark = element("span", "", chart.kind === "dots" ? shapes[i] + " " : "");
    mark.style.color = "var(--series-" + i + ")";
    label.append(box, swatch, mark, series.name, value);
    parent.append(label);
    return value;
  });
  if (chart.limits || chart.bands === "zero") {
    const label = element("label", "screen", chart.bands ? "bands in view" : "limits in view");
    const box = element("input", "");
    box.type = "checkbox";
    box.checked = true;
    box.addEventListener("change", () =>
      chart.graph.updateOptions({
        axes: { y: { valueRange: box.checked ? chart.wholeRange : null } },
      }));
    label.prepend(box);
    parent.append(label);
  }
}

// The key of the reference, and the row under the pointer.
function makeCaption(parent, chart) {
  if (data.reference !== undefined && chart.axis === axes[0])
    parent.append(element("span", "key at", "┊ reference"));
  if (chart.axis.breaks.length) parent.append(element("span", "key at", "▮ the clock jumps"));
  const limited = chart.series.filter((series, i) => chart.limits && chart.limits[i]);
  if (limited.length)
    parent.append(element("span", "key at", "╌ limits of " + limited.map(({ name }) => name).join(" and ")));
  if (chart.bands) {
    const sign = chart.bands === "zero" ? "═" : "▒";
    parent.append(element("span", "key at", sign + " twice the standard uncertainty"));
  }
  chart.place = element("span", "key at");
  chart.place.setAttribute("aria-live", "polite");
  parent.append(chart.place, toolsOf(chart));
}

function showValues(chart, bin) {
  const { axis } = chart;
  chart.series.forEach(({ mean, least, largest, seam }, i) => {
    let text = "";
    if (bin >= 0 && mean[bin] !== null) {
      const span = (low, high) => degrees(low) + " to " + degrees(high);
      const other = (seam || []).find((entry) => entry[0] === bin);
      if (other) text = span(least[bin], largest[bin]) + ", " + span(other[2], other[3]);
      else text = degrees(mean[bin]) + (axis.thinned ? " (" + span(least[bin], largest[bin]) + ")" : "");
    }
    chart.values[i].textContent = text;
  });
  chart.place.textContent = bin < 0 ? "" : placeText(axis, bin);
}

function placeText(axis, bin) {
  const time = axis.timeAt(axis.places[bin]);
  if (axis.own) return axis.name + " " + shown(time);
  const rows = axis.thinned ? "rows " + axis.firstRow(bin) + " to " + axis.lastRow(bin) : "row " + axis.firstRow(bin);
  return axis.firsts ? "at " + axis.text(time) + (axis.dates ? ", " : " s, ") + rows : rows;
}

// Charts over the same axis show the same stretch and the same row.
let following = false;
function follow(leader, act) {
  if (following) return;
  following = true;
  for (const chart of charts) if (chart !== leader && chart.axis === leader.axis) act(chart);
  following = false;
}

const seriesColors = (chart) => chart.series.map((_, i) => color("series-" + i));

function makeChart(chart) {
  const { axis } = chart;
  const figure = document.getElementById(chart.id);
  const plot = figure.querySelector(".plot");
  const table = rowsOf(chart);
  Object.assign(chart, { figure, plot, table, strip: figure.querySelector(".strip") });
  const inView = [...(chart.limits || []).flatMap((pair) => pair || []), ...usualBands(chart)];
  chart.wholeRange = inView.length || chart.log || chart.kind === "bars" ? rangeWith(inView, chart) : null;
  makeCaption(figure.querySelector("figcaption"), chart);
  makeKeys(figure.querySelector(".keys"), chart);
  chart.graph = new Dygraph(plot, table.rows, {
    labels: [axis.name, ...chart.series.map((series) => series.name)],
    customBars: true,
    plotter: plottersOf(chart),
    fillAlpha: 0.3,
    strokeWidth: 1.4,
    series: Object.fromEntries(chart.series.map(({ name }, i) => [name, { strokePattern: dashes[i] }])),
    colors: seriesColors(chart),
    gridLineColor: color("rule"),
    axisLineColor: color("faint"),
    axisLabelFontSize: fontSize,
    xRangePad: 6,
    legend: "never",
    xlabel: axis.name,
    xLabelHeight: 20,
    xAxisHeight: axis.dates ? 38 : undefined,
    labelsKMB: false,
    highlightCircleSize: 3,
    axes: {
      x: {
        ticker: (low, high, pixels) => ticksOf(axis, low, high, pixels),
        axisLabelWidth: axis.dates ? 80 : 60,
      },
      y: {
        axisLabelFormatter: tickLabel,
        axisLabelWidth: plot.clientWidth < 500 ? 58 : 80,
        pixelsPerLabel: 24, // a small chart has three, too
        valueRange: chart.wholeRange,
        ...(chart.log ? { ticker: decadesOf } : {}),
      },
    },
    underlayCallback: (context, area, graph) => drawUnder(context, area, graph, chart),
    highlightCallback: (event, x, points, row) => showBin(chart, table.binOf[row], chart),
    unhighlightCallback: () => showBin(chart, -1, chart),
    drawCallback: (graph, initial) => {
      plot.dataset.drawn = graph.numRows();
      if (initial) return;
      const dateWindow = graph.isZoomed("x") ? graph.xAxisRange() : null;
      follow(chart, (other) => other.graph.updateOptions({ dateWindow }));
    },
  });
  makeKeyboard(chart);
}

function redraw(pixelRatio) {
  ratio = pixelRatio;
  following = true;
  fontSize = document.documentElement.classList.contains("printing") ? 10 : 13;
  for (const chart of charts) {
    chart.graph.updateOptions({
      colors: seriesColors(chart),
      gridLineColor: color("rule"),
      axisLineColor: color("faint"),
      axisLabelFontSize: fontSize,
      pixelRatio,
    });
    chart.graph.resize();
  }
  following = false;
}

for (const chart of data.charts) {
  charts.push(chart);
  makeChart(chart);
}
goToRows();
addEventListener("hashchange", goToRows);

matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => redraw(null));
addEventListener("beforeprint", () => {
  document.documentElement.classList.add("printing");
  redraw(3);
});
addEventListener("afterprint", () => {
  document.documentElement.classList.remove("printing");
  redraw(null);
});
