import { svg } from './dom.js';

const kPaths = {
  home: 'M3 11.5 12 4l9 7.5M5.5 9.8V20h13V9.8M10 20v-5.5h4V20',
  globe:
    'M12 3a9 9 0 1 0 0 18 9 9 0 0 0 0-18ZM3 12h18M12 3c2.6 2.6 3.9 5.6 3.9 9S14.6 18.4 12 21c-2.6-2.6-3.9-5.6-3.9-9S9.4 5.6 12 3Z',
  wifi: 'M2.5 9a14 14 0 0 1 19 0M5.7 12.5a9.3 9.3 0 0 1 12.6 0M8.9 16a4.6 4.6 0 0 1 6.2 0M12 19.5h.01',
  devices: 'M4 5h12v9H4zM2 18h11M17 9h4.5v10H17z',
  mobile: 'M5 20v-4M10 20v-8M15 20V8M20 20V4',
  usb: 'M4 7.5 5.5 4h13L20 7.5M4 7.5h16V19H4zM8 15.5h.01M12 15.5h4',
  gear: 'M4 7h9M17 7h3M4 17h3M11 17h9M15 4.5v5M9 14.5v5',
  console: 'M3.5 5h17v14h-17zM7 10l3 2.5L7 15M12.5 15.5H17',
  more: 'M5 12h.01M12 12h.01M19 12h.01',
  close: 'M6 6l12 12M18 6 6 18',
  check: 'M5 12.5l4.5 4.5L19 7.5',
  alert: 'M12 4 2.5 20h19L12 4ZM12 10v4.5M12 17.3h.01',
  info: 'M12 3.5a8.5 8.5 0 1 0 0 17 8.5 8.5 0 0 0 0-17ZM12 11v5.5M12 7.7h.01',
  down: 'M12 5v14M6 13l6 6 6-6',
  up: 'M12 19V5M6 11l6-6 6 6',
  moon: 'M20 14.5A8.5 8.5 0 0 1 9.5 4a8.5 8.5 0 1 0 10.5 10.5Z',
  sun: 'M12 8a4 4 0 1 0 0 8 4 4 0 0 0 0-8ZM12 2.5v2M12 19.5v2M2.5 12h2M19.5 12h2M5.3 5.3l1.4 1.4M17.3 17.3l1.4 1.4M5.3 18.7l1.4-1.4M17.3 6.7l1.4-1.4',
  leave: 'M14 4H5v16h9M10 12h11M17 8l4 4-4 4',
  plug: 'M8 3v5M16 3v5M5 8h14v3a7 7 0 0 1-14 0V8ZM12 18v3',
  eye: 'M2.5 12S6 5.5 12 5.5 21.5 12 21.5 12 18 18.5 12 18.5 2.5 12 2.5 12ZM12 9.5a2.5 2.5 0 1 0 0 5 2.5 2.5 0 0 0 0-5Z',
  plus: 'M12 5v14M5 12h14',
  pen: 'M4 20l1-4L16 5l3 3L8 19l-4 1ZM13.5 7.5l3 3',
  gauge: 'M4 18a9 9 0 1 1 16 0M12 14l4-5M12 14h.01',
  clock: 'M12 3.5a8.5 8.5 0 1 0 0 17 8.5 8.5 0 0 0 0-17ZM12 7.5v5l3 2',
  ban: 'M12 3.5a8.5 8.5 0 1 0 0 17 8.5 8.5 0 0 0 0-17ZM6 6l12 12',
  lock: 'M6 11h12v9H6zM8.5 11V8a3.5 3.5 0 0 1 7 0v3',
  router: 'M3 13h18v6H3zM7 16h.01M11 16h.01M17 13V6M14 8a4 4 0 0 1 6 0',
  phone: 'M7 3h10v18H7zM11 18h2',
};

/** A line drawing that screen readers pass over. */
export const icon = (name) =>
  svg(
    'svg',
    { class: 'icon', viewBox: '0 0 24 24', 'aria-hidden': 'true', focusable: 'false' },
    svg('path', { d: kPaths[name] ?? '' }),
  );
