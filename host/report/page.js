const shown = (x) => String(Number(x.toPrecision(9)));
const timeText = (x) =>
  data.dates ? new Date(chartX(x)).toISOString().replace(/Z$/, data.x === "time, UTC" ? "Z" : "")
             : shown(x) + " s";
const degrees = (value) => value.toFixed(6);

// Axis labels with just the decimals that their spacing needs.
const tickLabel = (value, granularity, option, chart) => {
  const [low, high] = chart.yAxisRange(0);
  const decimals = Math.ceil(1 - Math.log10(Math.abs(high - low) || 1));
  return decimals > 8 || Math.abs(value) >= 1e7
    ? String(Number(value.toPrecision(6)))
    : value.toFixed(Math.max(0, decimals));
};

// The charted values and others, with a margin.
const rangeWith = (others, rows) => {
  let low = Math.min(...others);
  let high = Math.max(...others);
  for (const row of rows)
    for (const cell of row.slice(1))
      if (cell) {
        low = Math.min(low, cell[0]);
        high = Math.max(high, cell[2]);
      }
  const margin = (high - low) / 20;
  return [low - margin, high + margin];
};

const charts = [];
let fontSize = 13; // CSS pixels
let ratio = null; // of a canvas' pixels to those of the page, null for the screen's

// The two edges of the band, so that the spike of a single row stands out.
function plotEdges({ points, drawingContext: context, plotArea, color, strokeWidth }) {
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
}

function drawUnder(context, area, graph, chart) {
  context.save();
  context.font = fontSize - 1 + "px system-ui, sans-serif";
  if (data.reference !== undefined) drawReference(context, area, graph);
  if (chart.limits) drawLimits(context, area, graph, chart);
  drawWitnesses(context, area, graph);
  context.restore();
  if (lanes.length) drawStrip(chart.strip, area, graph, ratio || devicePixelRatio || 1, context.font);
}

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
    swatch.style.borderTop = "3px solid var(--series-" + i + ")";
    const value = element("span", "");
    label.append(box, swatch, series.name, value);
    parent.append(label);
    return value;
  });
  if (chart.wholeRange) {
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
  if (data.reference !== undefined) parent.append(element("span", "key at", "┊ reference"));
  const limited = chart.series.filter((series, i) => chart.limits && chart.limits[i]);
  if (limited.length)
    parent.append(element("span", "key at", "╌ limits of " + limited.map(({ name }) => name).join(" and ")));
  if (chart.bands) {
    const sign = chart.bands === "zero" ? "═" : "▒";
    parent.append(element("span", "key at", sign + " twice the standard uncertainty"));
  }
  chart.place = element("span", "key at");
  parent.append(chart.place);
}

function showValues(chart, bin) {
  chart.series.forEach(({ mean, least, largest, seam }, i) => {
    let text = "";
    if (bin >= 0 && mean[bin] !== null) {
      const span = (low, high) => degrees(low) + " to " + degrees(high);
      const other = (seam || []).find((entry) => entry[0] === bin);
      if (other) text = span(least[bin], largest[bin]) + ", " + span(other[2], other[3]);
      else text = degrees(mean[bin]) + (thinned ? " (" + span(least[bin], largest[bin]) + ")" : "");
    }
    chart.values[i].textContent = text;
  });
  const rows = () =>
    thinned ? "rows " + firstRow(bin) + " to " + lastRow(bin) : "row " + firstRow(bin);
  chart.place.textContent =
    bin < 0 ? "" : (data.first ? "at " + timeText(middleX(bin)) + ", " : "") + rows();
}

// All charts show the same stretch and the same row.
let following = false;
function follow(leader, act) {
  if (following) return;
  following = true;
  for (const chart of charts) if (chart.graph !== leader) act(chart);
  following = false;
}

const seriesColors = (chart) => chart.series.map((_, i) => color("series-" + i));

function makeChart(chart) {
  const figure = document.getElementById(chart.id);
  const plot = figure.querySelector(".plot");
  const table = rowsOf(chart);
  chart.table = table;
  chart.strip = figure.querySelector(".strip");
  const inView = [...(chart.limits || []).flatMap((pair) => pair || []), ...usualBands(chart)];
  chart.wholeRange = inView.length ? rangeWith(inView, table.rows) : null;
  makeCaption(figure.querySelector("figcaption"), chart);
  makeKeys(figure.querySelector(".keys"), chart);
  chart.graph = new Dygraph(plot, table.rows, {
    labels: [data.x, ...chart.series.map((series) => series.name)],
    customBars: true,
    plotter: [
      ...(chart.bands === "value" ? [plotBands(chart)] : []),
      ...(thinned ? [Dygraph.Plotters.errorPlotter, plotEdges] : []),
      Dygraph.Plotters.linePlotter,
      ...(chart.bands === "zero"
        ? [plotBandEdges(chart, 5, () => color("paper")), plotBandEdges(chart, 2, (series) => series.color)]
        : []),
    ],
    fillAlpha: 0.3,
    strokeWidth: 1.2,
    colors: seriesColors(chart),
    gridLineColor: color("rule"),
    axisLineColor: color("faint"),
    axisLabelFontSize: fontSize,
    xRangePad: 6,
    legend: "never",
    xlabel: data.x,
    labelsUTC: true,
    xLabelHeight: 20,
    labelsKMB: false,
    highlightCircleSize: 3,
    axes: {
      x: data.dates ? { ticker: Dygraph.dateTicker, axisLabelFormatter: Dygraph.dateAxisLabelFormatter }
                    : { axisLabelFormatter: (value) => shown(value) },
      y: { axisLabelFormatter: tickLabel, axisLabelWidth: 80, valueRange: chart.wholeRange },
    },
    underlayCallback: (context, area, graph) => drawUnder(context, area, graph, chart),
    highlightCallback: (event, x, points, row) => {
      const bin = table.binOf[row];
      showValues(chart, bin);
      follow(chart.graph, (other) => {
        other.graph.setSelection(other.table.rowOf[bin]);
        showValues(other, bin);
      });
    },
    unhighlightCallback: () => {
      showValues(chart, -1);
      follow(chart.graph, (other) => {
        other.graph.clearSelection();
        showValues(other, -1);
      });
    },
    drawCallback: (graph, initial) => {
      plot.dataset.drawn = graph.numRows();
      if (initial) return;
      const dateWindow = graph.isZoomed("x") ? graph.xAxisRange() : null;
      follow(graph, (other) => other.graph.updateOptions({ dateWindow }));
    },
  });
  return chart;
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

for (const chart of data.charts) charts.push(makeChart(chart));

matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => redraw(null));
addEventListener("beforeprint", () => {
  document.documentElement.classList.add("printing");
  redraw(3);
});
addEventListener("afterprint", () => {
  document.documentElement.classList.remove("printing");
  redraw(null);
});
