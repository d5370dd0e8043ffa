// Places of an axis that are named: at least three where there is room for them.
const decade = (least) => {
  const power = 10 ** Math.floor(Math.log10(least));
  return [1, 2, 5, 10].map((factor) => factor * power).find((step) => step >= least * (1 - 1e-9));
};
const clockSteps = [1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600, 43200];
const day = 86400;

// Of a stretch of time, not more often than each so many of its units.
const stepOf = (axis, least) => {
  if (axis.log) return 1;
  if (!axis.firsts && least < 1) return 1; // rows are whole
  if (!axis.dates || least < 1) return decade(least);
  return clockSteps.find((step) => step >= least) || day * decade(least / day);
};

// The date stands below the time of day where it is new.
function dateLabel(axis, time, step, before) {
  const [date, clock] = axis.text(time).replace("Z", "").split("T");
  const onlyDays = step >= day && clock === "00:00:00";
  const ofDay = step >= 60 && clock.endsWith(":00") ? clock.slice(0, 5) : clock;
  return { date, label: onlyDays ? date : ofDay + (date === before ? "" : "<br>" + date) };
}

// With so many pixels for a label.
function ticksWith(axis, low, high, pixels, room) {
  const least = ((high - low) * room) / pixels;
  const step = stepOf(axis, least);
  const ticks = [];
  let free = -Infinity;
  let date;
  const add = (v, time) => {
    if (v < free) return;
    const named = axis.dates ? dateLabel(axis, time, step, date) : { label: shown(time) };
    date = named.date;
    ticks.push({ v, label: named.label });
    free = v + 0.95 * least;
  };
  const single = axis.scales.length === 1; // that may be seen from further away
  for (const { from, to, shift } of axis.scales) {
    const begin = single ? low : Math.max(from, low);
    const end = single ? high : Math.min(to, high);
    if (begin > end) continue;
    const first = Math.ceil((begin - shift) / step - 1e-9);
    const last = Math.floor((end - shift) / step + 1e-9);
    if (last < first) add(begin, begin - shift);
    for (let i = first; i <= last; ++i) add(i * step + shift, axis.log ? 10 ** i : i * step);
  }
  return ticks;
}

function ticksOf(axis, low, high, pixels) {
  let ticks = [];
  for (const room of axis.dates ? [84, 64, 48] : [64, 48, 36])
    if (ticks.length < 3) ticks = ticksWith(axis, low, high, pixels, room);
  return ticks;
}
