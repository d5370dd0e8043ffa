// The page's data as rows of the charts.
const data = JSON.parse(document.getElementById("data").textContent);

const shown = (x) => String(Number(x.toPrecision(9)));

// What charts run over: bins of equally many rows, numbered from 1, in stretches between which the
// clock jumps; or with own values, which are no times. A break is the first row of a stretch, the time before it, its own time, and what is
// added to the stretch's times so that it stands behind the one before.
class Axis {
  constructor({ name, rows, rowsPerBin = 1, dates = false, log = false, own = false, first, last = first, breaks = [] }) {
    Object.assign(this, { name, rows, rowsPerBin, dates, log, own, breaks });
    this.thinned = rowsPerBin > 1;
    this.binCount = Math.ceil(rows / rowsPerBin);
    this.firsts = first;
    this.lasts = last;
    this.brokenBefore = new Set(); // bins that no line leads to
    this.stretches = [];
    let from = this.firstTime(0);
    let shift = 0;
    for (const [row, before, after, next] of breaks) {
      this.stretches.push({ from: from + shift, to: before + shift, shift });
      this.brokenBefore.add(this.binOf(row) + (this.inFirstHalf(row) ? 0 : 1));
      [from, shift] = [after, next];
    }
    this.stretches.push({ from: from + shift, to: this.lastTime(this.binCount - 1) + shift, shift });
    // Of them those that stand side by side to scale, as one.
    this.scales = this.stretches.filter(({ shift }, i) => !i || shift !== this.stretches[i - 1].shift)
      .map(({ from, shift }) => ({ from, shift, to: this.stretches.filter((each) => each.shift === shift).pop().to }));
    this.places = Array.from({ length: this.binCount }, (_, bin) => this.placeOf(bin));
  }
  binOf(row) { return Math.floor((row - 1) / this.rowsPerBin); }
  firstRow(bin) { return bin * this.rowsPerBin + 1; }
  lastRow(bin) { return Math.min((bin + 1) * this.rowsPerBin, this.rows); }
  inFirstHalf(row) { return 2 * (row - this.firstRow(this.binOf(row))) < this.rowsPerBin; }
  // As the clock shows them, or of the row number.
  firstTime(bin) { return this.firsts ? this.firsts[bin] : this.firstRow(bin); }
  lastTime(bin) { return this.lasts ? this.lasts[bin] : this.lastRow(bin); }
  shiftOf(row) {
    let shift = 0;
    for (const [first, , , next] of this.breaks) if (first <= row) shift = next;
    return shift;
  }
  // Where a bin stands: at the middle of its rows; with a break inside at the end of its larger part.
  placeOf(bin) {
    const from = this.firstTime(bin) + this.shiftOf(this.firstRow(bin));
    const to = this.lastTime(bin) + this.shiftOf(this.lastRow(bin));
    const inside = this.breaks.find(([row]) => row > this.firstRow(bin) && row <= this.lastRow(bin));
    const at = inside ? (this.inFirstHalf(inside[0]) ? to : from) : from / 2 + to / 2;
    return this.log ? Math.log10(at) : at;
  }
  // The clock's time at a place.
  timeAt(place) {
    const within = this.stretches.filter(({ from }) => from <= place).pop() || this.stretches[0];
    return this.log ? 10 ** place : place - within.shift;
  }
  text(time) {
    if (!this.dates) return shown(time);
    const text = new Date(Math.round(1e6 * time) / 1e3).toISOString();
    return text.replace(/\.?0*Z$/, "") + (this.name === "time, UTC" ? "Z" : "");
  }
}
const axes = data.axes.map((axis) => new Axis(axis));
for (const chart of data.charts) chart.axis = axes[chart.axis || 0];

// A series' ranges in a bin, each of least, mean and largest: none, one, or two where the bin lies
// across the seam, that on the side from which the line comes first.
function rangesOf(series, seam, bin, before) {
  const { mean, least = mean, largest = mean } = series;
  if (mean[bin] === null) return [];
  const range = [least[bin], mean[bin], largest[bin]];
  const other = seam.get(bin);
  if (!other) return [range];
  const nearer = before && Math.abs(before[1] - other[1]) < Math.abs(before[1] - range[1]);
  return nearer ? [other, range] : [range, other];
}

// Rows of x and, for each series, a range or null. No line may lead across a seam or a break: there
// a row that breaks it comes in between. binOf gives a row's bin, rowOf a bin's row.
function rowsOf(chart) {
  const seams = chart.series.map(
    ({ seam = [] }) => new Map(seam.map(([bin, mean, least, largest]) => [bin, [least, mean, largest]])));
  const table = { rows: [], binOf: [], rowOf: [] };
  const { axis } = chart;
  const nothing = chart.series.map(() => null);
  const drawn = (range) => (chart.log && range ? range.map(Math.log10) : range);
  let before = nothing;
  for (let bin = 0; bin < axis.binCount; ++bin) {
    const push = (cells) => {
      table.binOf.push(bin);
      table.rows.push([axis.places[bin], ...cells.map(drawn)]);
    };
    if (axis.brokenBefore.has(bin)) push((before = nothing));
    const ranges = chart.series.map((series, i) => rangesOf(series, seams[i], bin, before[i]));
    const broken = (breaks) => {
      if (breaks.includes(true)) push(ranges.map(([range = null], i) => (breaks[i] ? null : range)));
    };
    broken(ranges.map(([range], i) =>
      Boolean(chart.series[i].seam && range && before[i] && Math.abs(range[1] - before[i][1]) > 180)));
    table.rowOf.push(table.rows.length);
    push(ranges.map(([range = null]) => range));
    const across = ranges.map((pair) => pair.length > 1);
    broken(across);
    if (across.includes(true)) push(ranges.map((pair) => pair[pair.length - 1] || null));
    before = ranges.map((pair, i) => (pair.length ? pair[pair.length - 1] : null));
  }
  return table;
}
