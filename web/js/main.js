import { call, hasSession, send, setHooks } from './api.js';
import { askPassword, openDialog, toast } from './dialog.js';
import { fill, h } from './dom.js';
import { language, languageChosen, t, useLanguage } from './i18n.js';
import { icon } from './icons.js';
import { notice } from './dialog.js';
import { sentence } from './results.js';
import { loginPage } from './pages/login.js';
import { wizardPage } from './pages/wizard.js';
import { kPages } from './pages/all.js';

const kTheme = 'zelto.theme';
const kOnBar = 4;

const root = document.getElementById('app');
/** What the running page may listen to: it is aborted when the page goes. */
let leaving = new AbortController();
const state = { inside: false, functions: null, wizard: null };

/* ---- Theme and language --------------------------------------------------------------------- */

const dark = () => {
  const chosen = document.documentElement.dataset.theme;
  return chosen ? chosen === 'dark' : window.matchMedia('(prefers-color-scheme: dark)').matches;
};

function useTheme(name) {
  if (name) document.documentElement.dataset.theme = name;
}

function themeButton() {
  const button = h(
    'button',
    {
      type: 'button',
      class: 'icon-button',
      id: 'theme',
      'aria-label': t('theme'),
      'aria-pressed': String(dark()),
      onclick: () => {
        const name = dark() ? 'light' : 'dark';
        localStorage.setItem(kTheme, name);
        useTheme(name);
        button.setAttribute('aria-pressed', String(dark()));
        fill(button, icon(dark() ? 'sun' : 'moon'));
      },
    },
    icon(dark() ? 'sun' : 'moon'),
  );
  return button;
}

const languageButton = () =>
  h(
    'button',
    {
      type: 'button',
      class: 'button plain',
      id: 'language',
      lang: language() === 'en' ? 'zh-Hans' : 'en',
      onclick: () => {
        useLanguage(language() === 'en' ? 'zh' : 'en', true);
        render();
        document.getElementById('language')?.focus();
      },
    },
    language() === 'en' ? '中文' : 'English',
  );

/* ---- Frame ---------------------------------------------------------------------------------- */

const route = () => window.location.hash.replace(/^#\/?/, '').split('/');

/** Whether this operation mode offers something; all is offered while the router does not say. */
const offered = (name) => !name || !state.functions || state.functions.includes(name);

async function logOut() {
  await send({ type: 'logout' }).catch(() => {});
  state.inside = false;
  state.functions = null;
  render();
}

function navigation(current) {
  const link = (page) =>
    h(
      'a',
      {
        href: `#/${page.id}`,
        'aria-current': page.id === current ? 'page' : null,
        id: `nav-${page.id}`,
      },
      icon(page.icon),
      h('span', {}, t(`page.${page.id}`)),
    );
  const rest = kPages.slice(kOnBar);
  const more = h(
    'button',
    {
      type: 'button',
      class: `nav-more ${rest.some((page) => page.id === current) ? 'current' : ''}`,
      id: 'nav-more',
      'aria-haspopup': 'dialog',
      onclick: () => {
        const list = h(
          'ul',
          { class: 'more-list' },
          rest.map((page) =>
            h(
              'li',
              {},
              h(
                'a',
                {
                  href: `#/${page.id}`,
                  onclick: (event) => event.target.closest('dialog').close(),
                },
                icon(page.icon),
                t(`page.${page.id}`),
              ),
            ),
          ),
        );
        openDialog({ title: t('more'), body: list });
      },
    },
    icon('more'),
    h('span', {}, t('more')),
  );
  return h(
    'nav',
    { class: 'nav', 'aria-label': t('navigation') },
    h(
      'ul',
      {},
      kPages.map((page, i) => h('li', { class: i >= kOnBar ? 'further' : null }, link(page))),
      h('li', { class: 'opener' }, more),
    ),
  );
}

function showPage(content, current) {
  const bar = h(
    'header',
    { class: 'bar' },
    h('a', { href: '#/overview', class: 'brand' }, icon('router'), h('span', {}, t('brand'))),
    h(
      'div',
      { class: 'bar-tools' },
      languageButton(),
      themeButton(),
      h(
        'button',
        {
          type: 'button',
          class: 'icon-button',
          id: 'logout',
          'aria-label': t('logout'),
          onclick: logOut,
        },
        icon('leave'),
      ),
    ),
  );
  fill(
    root,
    h(
      'a',
      {
        href: '#main',
        class: 'skip',
        onclick: (event) => {
          event.preventDefault();
          document.getElementById('main').focus();
        },
      },
      t('skip'),
    ),
    bar,
    navigation(current),
    h('main', { id: 'main', tabindex: '-1' }, content),
  );
}

const showPlain = (content) =>
  fill(
    root,
    h(
      'div',
      { class: 'plain-frame' },
      h('header', { class: 'plain-tools' }, languageButton(), themeButton()),
      h('main', { id: 'main', tabindex: '-1' }, content),
    ),
  );

/* ---- Pages ---------------------------------------------------------------------------------- */

function render({ focus } = {}) {
  leaving.abort();
  leaving = new AbortController();
  if (!state.inside) {
    document.title = `${t('login.title')} – ${t('brand')}`;
    showPlain(loginPage({ entered, ended: state.ended }));
    return;
  }
  if (state.wizard) {
    document.title = `${t('wizard.title')} – ${t('brand')}`;
    showPlain(wizardPage({ ...state.wizard, signal: leaving.signal, done: wizardDone }));
    return;
  }
  const [name, tab] = route();
  const page = kPages.find(({ id }) => id === name) ?? kPages[0];
  const tabs = page.tabs?.filter((candidate) => offered(candidate.needs));
  const chosen = tabs?.find(({ id }) => id === tab) ?? tabs?.[0];
  const context = {
    signal: leaving.signal,
    offered,
    leave: logOut,
    functionsChanged: loadFunctions,
  };
  const heading = h('h1', { tabindex: '-1' }, t(`page.${page.id}`));
  document.title = `${t(`page.${page.id}`)} – ${t('brand')}`;
  const tabBar =
    tabs &&
    tabs.length > 1 &&
    h(
      'nav',
      { class: 'tabs', 'aria-label': t(`page.${page.id}`) },
      h(
        'ul',
        {},
        tabs.map(({ id }) =>
          h(
            'li',
            {},
            h(
              'a',
              {
                href: `#/${page.id}/${id}`,
                'aria-current': id === chosen.id ? 'page' : null,
              },
              t(`tab.${page.id}.${id}`),
            ),
          ),
        ),
      ),
    );
  showPage(
    [heading, tabBar, h('div', { class: 'cards' }, (chosen ?? page).cards(context))],
    page.id,
  );
  tabBar?.querySelector?.('[aria-current]')?.scrollIntoView({ block: 'nearest', inline: 'center' });
  if (focus) heading.focus();
}

async function loadFunctions() {
  try {
    const { list } = await call('getfunlist');
    state.functions = list.map(({ fun }) => fun);
  } catch {
    state.functions = null;
  }
}

async function wizardDone() {
  state.wizard = null;
  await loadFunctions();
  // A change of the address shows the page by itself.
  if (route()[0] === 'overview') render({ focus: true });
  else window.location.hash = '#/overview';
}

/** Called after a login; the password is only handed to the wizard, which needs it once more. */
async function entered(reply, password) {
  state.inside = true;
  state.ended = false;
  if (reply.first_login === 0) state.wizard = { password };
  await loadFunctions();
  render({ focus: true });
}

setHooks({
  password: askPassword,
  sessionEnded() {
    if (!state.inside) return;
    state.inside = false;
    state.ended = true;
    state.wizard = null;
    for (const dialog of document.querySelectorAll('dialog')) {
      dialog.close();
      dialog.remove();
    }
    render();
    toast(t('login.ended'), 'bad');
  },
});

async function start() {
  useTheme(localStorage.getItem(kTheme));
  useLanguage(language(), false);
  fill(
    root,
    h('div', { class: 'starting', role: 'status' }, icon('router'), h('p', {}, t('loading'))),
  );
  if (!languageChosen()) {
    const reply = await call('getlanguage').catch(() => null);
    const name = { en: 'en', zhcn: 'zh' }[reply?.language];
    if (name) useLanguage(name, false);
  }
  try {
    state.inside = await hasSession();
  } catch (error) {
    fill(
      root,
      h(
        'main',
        { class: 'starting' },
        notice(
          'error',
          h('p', {}, sentence(error)),
          h('button', { type: 'button', class: 'button small', onclick: start }, t('retry')),
        ),
      ),
    );
    return;
  }
  if (state.inside) await loadFunctions();
  render();
}

window.addEventListener('hashchange', () => render({ focus: true }));
start();
