import { consolePage } from './console.js';
import { devicesPage } from './devices.js';
import { internetPage } from './internet.js';
import { mobilePage } from './mobile.js';
import { overviewPage } from './overview.js';
import { systemPage } from './system.js';
import { usbPage } from './usb.js';
import { wifiPage } from './wifi.js';

/** All pages; a phone shows the first four at the bottom and the rest behind "more". */
export const kPages = [
  overviewPage,
  internetPage,
  wifiPage,
  devicesPage,
  mobilePage,
  usbPage,
  systemPage,
  consolePage,
];
