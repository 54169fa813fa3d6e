import { h, svg } from './dom.js';
import { speed, t } from './i18n.js';

const kWidth = 600;
const kHeight = 150;
const kPoints = 60;

const path = (series, top) =>
  series
    .map(
      (value, i) =>
        `${i === 0 ? 'M' : 'L'}${(kWidth - (series.length - 1 - i) * (kWidth / (kPoints - 1))).toFixed(1)} ${(kHeight - (value / top) * (kHeight - 8)).toFixed(1)}`,
    )
    .join('');

/** A round number not below the largest value, so that the scale moves seldom. */
function ceiling(value) {
  if (value <= 10) return 10;
  const step = 10 ** Math.floor(Math.log10(value));
  return [1, 2, 5, 10].map((factor) => factor * step).find((candidate) => candidate >= value);
}

/**
 * The speed of the last minutes: `add(down, up)` in kilobytes a second, or nothing when unknown. The
 * history belongs to the caller, so that it outlives the drawing.
 */
export function speedChart(history) {
  const lines = [
    svg('path', { class: 'area' }),
    svg('path', { class: 'line down' }),
    svg('path', { class: 'line up' }),
  ];
  const grid = [0.25, 0.5, 0.75].map((part) =>
    svg('path', { class: 'grid', d: `M0 ${kHeight * part}H${kWidth}` }),
  );
  const scale = h('span', { class: 'scale' });
  const now = h('p', { class: 'sr', role: 'status', 'aria-live': 'off' });
  const element = h(
    'figure',
    { class: 'chart' },
    svg(
      'svg',
      {
        viewBox: `0 0 ${kWidth} ${kHeight}`,
        preserveAspectRatio: 'none',
        role: 'img',
        'aria-label': t('overview.graph'),
      },
      grid,
      lines,
    ),
    scale,
    now,
  );

  function draw() {
    const down = history.map((point) => point.down);
    const up = history.map((point) => point.up);
    const top = ceiling(Math.max(...down, ...up, 0));
    scale.textContent = speed(String(top));
    if (history.length === 0) return;
    const line = path(down, top);
    const left = (kWidth - (history.length - 1) * (kWidth / (kPoints - 1))).toFixed(1);
    lines[0].setAttribute('d', `${line}V${kHeight}H${left}Z`);
    lines[1].setAttribute('d', line);
    lines[2].setAttribute('d', path(up, top));
    const last = history.at(-1);
    now.textContent = t('overview.speeds', {
      down: speed(String(last.down)),
      up: speed(String(last.up)),
    });
  }
  draw();
  return {
    element,
    add(down, up) {
      history.push({ down, up });
      if (history.length > kPoints) history.shift();
      draw();
    },
  };
}
