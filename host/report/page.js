"use strict";

(() => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const binCount = Math.ceil(data.rows / data.rowsPerBin);
  const thinned = data.rowsPerBin > 1;

  const firstRow = (bin) => bin * data.rowsPerBin + 1;
  const lastRow = (bin) => Math.min((bin + 1) * data.rowsPerBin, data.rows);
  const firstX = (bin) => (data.first ? data.first[bin] : firstRow(bin));
  const lastX = (bin) => (data.last ? data.last[bin] : data.first ? data.first[bin] : lastRow(bin));
  const middleX = (bin) => firstX(bin) / 2 + lastX(bin) / 2;

  const color = (name) =>
    getComputedStyle(document.documentElement).getPropertyValue("--" + name).trim();
  const shown = (x) => String(Number(x.toPrecision(9)));
  const degrees = (value) => value.toFixed(6);

  // Axis labels with just the decimals that their spacing needs.
  const tickLabel = (value, granularity, option, chart) => {
    const [low, high] = chart.yAxisRange(0);
    const decimals = Math.ceil(1 - Math.log10(Math.abs(high - low) || 1));
    return decimals > 8 || Math.abs(value) >= 1e7
      ? String(Number(value.toPrecision(6)))
      : value.toFixed(Math.max(0, decimals));
  };

  // Rows of x and, for each series, least, mean and largest.
  const tableOf = (chart) =>
    Array.from({ length: binCount }, (_, bin) => [
      middleX(bin),
      ...chart.series.map(({ mean, least = mean, largest = mean }) =>
        mean[bin] === null ? null : [least[bin], mean[bin], largest[bin]]),
    ]);

  // The charted values and the limits, with a margin.
  const rangeWith = (limits, table) => {
    let low = Math.min(...limits);
    let high = Math.max(...limits);
    for (const row of table)
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

  function drawMarks(context, area, graph, bins, name, shape) {
    context.fillStyle = context.strokeStyle = color(name);
    for (const [bin] of bins) {
      const x = graph.toDomXCoord(middleX(bin));
      if (x < area.x || x > area.x + area.w) continue;
      context.globalAlpha = 0.35;
      context.lineWidth = 1;
      context.beginPath();
      context.moveTo(x, area.y);
      context.lineTo(x, area.y + area.h);
      context.stroke();
      context.globalAlpha = 1;
      shape(context, x, area.y);
    }
  }

  const triangle = (context, x, y) => {
    context.beginPath();
    context.moveTo(x - 5, y);
    context.lineTo(x + 5, y);
    context.lineTo(x, y + 9);
    context.fill();
  };
  const square = (context, x, y) => context.fillRect(x - 4, y, 8, 8);

  function drawReference(context, area, graph) {
    const x = graph.toDomXCoord(data.reference);
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

  function drawUnder(context, area, graph, chart) {
    context.save();
    context.font = fontSize - 1 + "px system-ui, sans-serif";
    if (data.reference !== undefined) drawReference(context, area, graph);
    if (chart.limits) drawLimits(context, area, graph, chart);
    drawMarks(context, area, graph, data.noOrientation, "no-orientation", square);
    drawMarks(context, area, graph, data.refused, "refused", triangle);
    context.restore();
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
    if (chart.limits && chart.limits.some(Boolean)) {
      const label = element("label", "screen", "limits in view");
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

  // The keys of the marks, and the row under the pointer.
  function makeCaption(parent, chart) {
    if (data.reference !== undefined) parent.append(element("span", "key at", "┊ reference"));
    if (data.refused.length) parent.append(element("span", "key refused", "▼ refused"));
    if (data.noOrientation.length)
      parent.append(element("span", "key no-orientation", "■ no orientation"));
    chart.place = element("span", "key at");
    parent.append(chart.place);
  }

  function showValues(chart, bin) {
    chart.series.forEach(({ mean, least, largest }, i) => {
      let text = "";
      if (bin >= 0 && mean[bin] !== null) {
        text = degrees(mean[bin]);
        if (thinned) text += " (" + degrees(least[bin]) + " to " + degrees(largest[bin]) + ")";
      }
      chart.values[i].textContent = text;
    });
    const rows = () =>
      thinned ? "rows " + firstRow(bin) + " to " + lastRow(bin) : "row " + firstRow(bin);
    chart.place.textContent =
      bin < 0 ? "" : (data.first ? "at " + shown(middleX(bin)) + " s, " : "") + rows();
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
    const table = tableOf(chart);
    makeCaption(figure.querySelector("figcaption"), chart);
    makeKeys(figure.querySelector(".keys"), chart);
    const limits = (chart.limits || []).flatMap((pair) => pair || []);
    chart.wholeRange = limits.length ? rangeWith(limits, table) : null;
    chart.graph = new Dygraph(plot, table, {
      labels: [data.x, ...chart.series.map((series) => series.name)],
      customBars: true,
      plotter: thinned
        ? [Dygraph.Plotters.errorPlotter, plotEdges, Dygraph.Plotters.linePlotter]
        : Dygraph.Plotters.linePlotter,
      fillAlpha: 0.3,
      strokeWidth: 1.2,
      colors: seriesColors(chart),
      gridLineColor: color("rule"),
      axisLineColor: color("faint"),
      axisLabelFontSize: fontSize,
      xRangePad: 6,
      legend: "never",
      xlabel: data.x,
      xLabelHeight: 20,
      labelsKMB: false,
      highlightCircleSize: 3,
      axes: {
        x: { axisLabelFormatter: (value) => shown(value) },
        y: { axisLabelFormatter: tickLabel, axisLabelWidth: 80, valueRange: chart.wholeRange },
      },
      underlayCallback: (context, area, graph) => drawUnder(context, area, graph, chart),
      highlightCallback: (event, x, points, bin) => {
        showValues(chart, bin);
        follow(chart.graph, (other) => {
          other.graph.setSelection(bin);
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
})();
