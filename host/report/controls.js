// What moves the charts: buttons, keys, links to rows, strips.
const decadesOf = (low, high, pixels) =>
  ticksOf({ log: true, scales: [{ from: low, to: high, shift: 0 }] }, low, high, 2 * pixels);

// Of all charts over the same axis, and of the leader itself.
function showBin(chart, bin, leader = null) {
  chart.bin = bin;
  showValues(chart, bin);
  follow(chart, (other) => {
    other.bin = bin;
    if (bin < 0) other.graph.clearSelection();
    else other.graph.setSelection(other.table.rowOf[bin]);
    showValues(other, bin);
  });
  if (leader) return;
  if (bin < 0) chart.graph.clearSelection();
  else chart.graph.setSelection(chart.table.rowOf[bin]);
}

// Null shows everything.
const setWindow = (chart, dateWindow) => chart.graph.updateOptions({ dateWindow });

function zoom(chart, factor) {
  const [low, high] = chart.graph.xAxisRange();
  const at = chart.bin >= 0 ? chart.axis.places[chart.bin] : (low + high) / 2;
  const middle = at > low && at < high ? at : (low + high) / 2;
  const wider = [middle + (low - middle) * factor, middle + (high - middle) * factor];
  const [least, largest] = chart.graph.xAxisExtremes();
  setWindow(chart, wider[0] <= least && wider[1] >= largest ? null
                   : [Math.max(least, wider[0]), Math.min(largest, wider[1])]);
}

function shift(chart, share) {
  const [low, high] = chart.graph.xAxisRange();
  const [least, largest] = chart.graph.xAxisExtremes();
  const by = Math.min(Math.max(share * (high - low), least - low), largest - high);
  if (by) setWindow(chart, [low + by, high + by]);
}

// To the next bin of those in view, a two-hundredth of them further.
function step(chart, direction) {
  const { places } = chart.axis;
  const [low, high] = chart.graph.xAxisRange();
  const inView = places.map((_, bin) => bin).filter((bin) => places[bin] >= low && places[bin] <= high);
  if (!inView.length) return;
  const at = inView.indexOf(chart.bin);
  const next = at < 0 ? (direction > 0 ? 0 : inView.length - 1)
                      : at + direction * Math.max(1, Math.round(inView.length / 200));
  showBin(chart, inView[Math.min(Math.max(next, 0), inView.length - 1)]);
}

const keys = {
  ArrowLeft: (chart, event) => (event.shiftKey ? shift(chart, -0.25) : step(chart, -1)),
  ArrowRight: (chart, event) => (event.shiftKey ? shift(chart, 0.25) : step(chart, 1)),
  "+": (chart) => zoom(chart, 0.5),
  "=": (chart) => zoom(chart, 0.5),
  "-": (chart) => zoom(chart, 2),
  Escape: (chart) => (setWindow(chart, null), showBin(chart, -1)),
};

function makeKeyboard(chart) {
  const { plot, strip } = chart;
  chart.bin = -1;
  plot.tabIndex = 0;
  plot.addEventListener("keydown", (event) => {
    if (!keys[event.key] || event.ctrlKey || event.altKey || event.metaKey) return;
    keys[event.key](chart, event);
    event.preventDefault();
  });
  strip.addEventListener("click", ({ offsetX, offsetY }) => {
    const lane = lanes[Math.floor(offsetY / laneHeight)];
    if (!lane || chart.axis !== axes[0]) return;
    const distance = ([bin]) => Math.abs(chart.graph.toDomXCoord(chart.axis.places[bin]) - offsetX);
    const nearest = lane.marks.reduce((best, mark) => (distance(mark) < distance(best) ? mark : best));
    if (distance(nearest) < 12)
      location.hash = "rows=" + chart.axis.firstRow(nearest[0]) + "-" + chart.axis.lastRow(nearest[0]);
  });
}

function button(text, name, act) {
  const made = element("button", "", text);
  made.type = "button";
  made.title = name;
  made.setAttribute("aria-label", name);
  made.addEventListener("click", act);
  return made;
}

function toolsOf(chart) {
  const tools = element("span", "tools screen");
  const title = chart.figure.querySelector("figcaption").firstChild.textContent;
  tools.append(
    button("+", "Zoom in: " + title, () => zoom(chart, 0.5)),
    button("−", "Zoom out: " + title, () => zoom(chart, 2)),
    button("all", "Show everything: " + title, () => setWindow(chart, null)),
    button("PNG", "Save the picture: " + title, () => savePicture(chart)),
    button("CSV", "Save the rows in view: " + title, () => saveRows(chart)));
  return tools;
}

// The address ends with #rows=FIRST-LAST where a link leads to rows: they come into view, with some
// around them.
function goToRows() {
  const [, first, last] = location.hash.match(/^#rows=(\d+)-(\d+)$/) || [];
  const chart = charts.find(({ axis }) => axis === axes[0]);
  if (!first || !chart || last > chart.axis.rows) return;
  const { axis } = chart;
  const bins = [axis.binOf(Number(first)), axis.binOf(Number(last))];
  const [from, to] = bins.map((bin) => axis.places[bin]);
  const [least, largest] = chart.graph.xAxisExtremes();
  const around = Math.max((to - from) / 2, (largest - least) / 100);
  setWindow(chart, [Math.max(least, from - around), Math.min(largest, to + around)]);
  showBin(chart, bins[0]);
  chart.figure.scrollIntoView();
  chart.plot.focus({ preventScroll: true });
}
