// The page's data as rows of the charts.
const data = JSON.parse(document.getElementById("data").textContent);
const binCount = Math.ceil(data.rows / data.rowsPerBin);
const thinned = data.rowsPerBin > 1;

const firstRow = (bin) => bin * data.rowsPerBin + 1;
const lastRow = (bin) => Math.min((bin + 1) * data.rowsPerBin, data.rows);
const firstX = (bin) => (data.first ? data.first[bin] : firstRow(bin));
const lastX = (bin) => (data.last ? data.last[bin] : data.first ? data.first[bin] : lastRow(bin));
const middleX = (bin) => firstX(bin) / 2 + lastX(bin) / 2;
// The charts count dates in milliseconds.
const chartX = (x) => (data.dates ? 1000 * x : x);

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

// Rows of x and, for each series, a range or null. No line may lead across a seam: there a row
// that breaks it comes in between. binOf gives a row's bin, rowOf a bin's row.
function rowsOf(chart) {
  const seams = chart.series.map(
    ({ seam = [] }) => new Map(seam.map(([bin, mean, least, largest]) => [bin, [least, mean, largest]])));
  const table = { rows: [], binOf: [], rowOf: [] };
  let before = chart.series.map(() => null);
  for (let bin = 0; bin < binCount; ++bin) {
    const ranges = chart.series.map((series, i) => rangesOf(series, seams[i], bin, before[i]));
    const push = (cells) => {
      table.binOf.push(bin);
      table.rows.push([chartX(middleX(bin)), ...cells]);
    };
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
