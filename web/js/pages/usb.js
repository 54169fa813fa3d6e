import { call } from '../api.js';
import * as check from '../check.js';
import { attempt, card, light, settings } from '../cards.js';
import { confirm, notice, toast } from '../dialog.js';
import { fill, h } from '../dom.js';
import { t } from '../i18n.js';
import { icon } from '../icons.js';

// The router gives back one folder less than it takes; a longer list would lose its last one.
const kFolders = 7;

/** "/mnt/sda1/photos/" as a family would say it. */
const folderName = (path) =>
  path
    .replace(/^\/mnt\//, '')
    .replace(/\/$/, '')
    .replace('/', ' › ');

// An account goes through several of the router's own tools.
const accountName = (text) =>
  /^[a-z_][a-z0-9_-]{0,30}$/.test(text) ? null : { key: 'check.account' };

const disk = (refreshAll) =>
  card({
    id: 'disk',
    title: 'usb.disk',
    wide: true,
    load: async () => (await call('getusbenable')).usbenable === 'enable',
    show(body, there) {
      const place = h('div', { class: 'place', 'aria-live': 'polite' });
      const eject = h(
        'button',
        {
          type: 'button',
          class: 'button',
          id: 'eject',
          onclick: async () => {
            if (
              !(await confirm({
                title: t('usb.eject'),
                text: t('usb.eject.ask'),
                action: t('usb.eject'),
              }))
            )
              return;
            const done = await attempt(eject, place, () => call('umountusb'));
            if (!done) return;
            toast(t('usb.ejected'));
            refreshAll();
          },
        },
        icon('usb'),
        t('usb.eject'),
      );
      fill(
        body,
        there
          ? h('div', { class: 'lights' }, light('good', t('usb.there')))
          : h('p', { class: 'empty' }, t('usb.none')),
        place,
        there && h('div', { class: 'actions' }, eject),
      );
    },
  });

const sharing = (name, load, fields, save) =>
  settings({ id: name, title: `${name}.title`, intro: `${name}.intro`, load, fields, save });

const accountFields = (user, password) => [
  { name: user, label: 'account', required: true, check: accountName, hint: 'usb.account.hint' },
  {
    name: password,
    kind: 'password',
    label: 'password.label',
    required: true,
    autocomplete: 'new-password',
    check: [
      check.bytesAtMost(127),
      (text) => (/^[\x21-\x7e]+$/.test(text) ? null : { key: 'check.printable' }),
    ],
  },
];

const folders = async () => (await call('getusballpath')).list.map(({ usbpath }) => usbpath);

/** All folders that there are, and those shared although they are not there now. */
const folderOptions = (there, shared) =>
  [...new Set([...there, ...shared])].map((path) => [
    path,
    there.includes(path) ? folderName(path) : t('usb.gone', { name: folderName(path) }),
  ]);

const samba = () =>
  sharing(
    'samba',
    async () => {
      const config = await call('getsambacfg');
      return {
        Switch: config.Switch,
        sambauser: config.sambauser,
        sambapasswd: config.sambapasswd,
        shared: config.list.map(({ path }) => path),
        there: await folders(),
      };
    },
    ({ there, shared }) => [
      { name: 'Switch', kind: 'switch', on: 'on', off: 'off', label: 'samba.on' },
      ...accountFields('sambauser', 'sambapasswd'),
      {
        name: 'shared',
        kind: 'checks',
        label: 'usb.folders',
        options: folderOptions(there, shared),
        empty: 'usb.nofolders',
        wide: true,
        verbatim: true,
        check: (text) =>
          text.split(',').length > kFolders
            ? { key: 'check.folders', values: { n: kFolders } }
            : null,
      },
    ],
    async (values, before) => {
      const { sambauser, sambapasswd, shared, Switch } = values;
      if (sambauser !== before.sambauser || sambapasswd !== before.sambapasswd)
        await call('setsambacfg', { sambauser, sambapasswd });
      if (shared.join() !== before.shared.join())
        await call('setsambapath', { list: shared.map((sambapath) => ({ sambapath })) });
      if (Switch !== before.Switch) await call('setsambaswitch', { Switch });
    },
  );

const ftp = () =>
  sharing(
    'ftp',
    async () => {
      const { Switch, ftpuser, ftppasswd, path } = await call('getftpcfg');
      return { Switch, ftpuser, ftppasswd, path, there: await folders() };
    },
    ({ there, path }) => [
      { name: 'Switch', kind: 'switch', on: 'on', off: 'off', label: 'ftp.on' },
      ...accountFields('ftpuser', 'ftppasswd'),
      {
        name: 'path',
        kind: 'select',
        label: 'ftp.folder',
        options: [['', 'ftp.nofolder'], ...folderOptions(there, path ? [path] : [])],
      },
    ],
    async ({ Switch, ftpuser, ftppasswd, path }, before) => {
      if (path !== before.path)
        await call(path ? 'setftppath' : 'delftppath', path ? { ftppath: path } : {});
      if (ftpuser !== before.ftpuser || ftppasswd !== before.ftppasswd)
        await call('setftpcfg', { ftpuser, ftppasswd });
      if (Switch !== before.Switch) await call('setftpswitch', { Switch });
    },
  );

function cards() {
  const all = [];
  const refreshAll = () => all.forEach(({ refresh }) => refresh());
  all.push(disk(refreshAll), samba(), ftp());
  return [...all.map(({ element }) => element), notice('info', t('usb.plain'))];
}

export const usbPage = { id: 'usb', icon: 'usb', cards };
