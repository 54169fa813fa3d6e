import { call, hasSession, send, setHooks } from './api.js';
import { askPassword, notice, toast } from './dialog.js';
import { fill, h } from './dom.js';
import { chosenTheme, showPage, showPlain, useTheme } from './frame.js';
import { language, languageChosen, t, useLanguage } from './i18n.js';
import { icon } from './icons.js';
import { kPages } from './pages/all.js';
import { loginPage } from './pages/login.js';
import { wizardPage } from './pages/wizard.js';
import { sentence } from './results.js';

const root = document.getElementById('app');
/** What the running page listens to: it is aborted when the page goes. */
let leaving = new AbortController();
const state = { inside: false, ended: false, functions: null, wizard: null };

const route = () => window.location.hash.replace(/^#\/?/, '').split('/');

/** Whether this operation mode offers something; all is offered while the router does not say. */
const offered = (name) => !name || !state.functions || state.functions.includes(name);

async function logOut() {
  await send({ type: 'logout' }).catch(() => {});
  state.inside = false;
  state.functions = null;
  render();
}

const tabsOf = (page, tabs, chosen) =>
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

function render({ focus } = {}) {
  leaving.abort();
  leaving = new AbortController();
  if (!state.inside) {
    document.title = `${t('login.title')} – ${t('brand')}`;
    showPlain(loginPage({ entered, ended: state.ended }), { relabel: render });
    return;
  }
  if (state.wizard) {
    document.title = `${t('wizard.title')} – ${t('brand')}`;
    const wizard = wizardPage({ ...state.wizard, signal: leaving.signal, done: wizardDone });
    showPlain(wizard, { relabel: render });
    return;
  }
  const [name, tab] = route();
  const page = kPages.find(({ id }) => id === name) ?? kPages[0];
  const tabs = page.tabs?.filter((candidate) => offered(candidate.needs));
  const chosen = tabs?.find(({ id }) => id === tab) ?? tabs?.[0];
  const context = { signal: leaving.signal, offered, functionsChanged: loadFunctions };
  const heading = h('h1', { tabindex: '-1' }, t(`page.${page.id}`));
  document.title = `${t(`page.${page.id}`)} – ${t('brand')}`;
  const tabBar = tabs?.length > 1 && tabsOf(page, tabs, chosen);
  const cards = h('div', { class: 'cards' }, (chosen ?? page).cards(context));
  showPage([heading, tabBar, cards], { pages: kPages, current: page.id, relabel: render, logOut });
  if (tabBar) {
    const current = tabBar.querySelector('[aria-current]');
    current.scrollIntoView({ block: 'nearest', inline: 'center' });
  }
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
  useTheme(chosenTheme());
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

window.addEventListener('hashchange', () => {
  // A question belongs to its page; work that goes on does not end with it.
  for (const dialog of document.querySelectorAll('dialog:not(.progress)')) dialog.close();
  render({ focus: true });
});
// Shown within a page of another port of this router's address it would have a session there, and
// be clicked on unseen.
if (window.top === window.self) start();
