// What stands around every page: bar, navigation, and the switches of language and appearance.

import { openDialog } from './dialog.js';
import { fill, h } from './dom.js';
import { language, t, useLanguage } from './i18n.js';
import { icon } from './icons.js';

const kTheme = 'zelto.theme';
// As many pages as the bar of a phone has room for, beside "more".
const kOnBar = 4;

const root = document.getElementById('app');

const preference = window.matchMedia('(prefers-color-scheme: dark)');

const dark = () => {
  const chosen = document.documentElement.dataset.theme;
  return chosen ? chosen === 'dark' : preference.matches;
};

/** Uses an appearance; without a name the device's own stays. */
export function useTheme(name) {
  if (name) document.documentElement.dataset.theme = name;
}

function showTheme(button) {
  button.setAttribute('aria-pressed', String(dark()));
  fill(button, icon(dark() ? 'sun' : 'moon'));
  return button;
}

const themeButton = () =>
  showTheme(
    h('button', {
      type: 'button',
      class: 'icon-button',
      id: 'theme',
      'aria-label': t('theme'),
      onclick: ({ currentTarget }) => {
        const name = dark() ? 'light' : 'dark';
        localStorage.setItem(kTheme, name);
        useTheme(name);
        showTheme(currentTarget);
      },
    }),
  );

// A device may turn dark at dusk.
preference.addEventListener('change', () => {
  const button = document.getElementById('theme');
  if (button) showTheme(button);
});

const languageButton = (relabel) =>
  h(
    'button',
    {
      type: 'button',
      class: 'button plain',
      id: 'language',
      lang: language() === 'en' ? 'zh-Hans' : 'en',
      onclick: () => {
        useLanguage(language() === 'en' ? 'zh' : 'en', true);
        relabel();
        document.getElementById('language')?.focus();
      },
    },
    language() === 'en' ? '中文' : 'English',
  );

/** The appearance that was chosen on this device, or null. */
export const chosenTheme = () => localStorage.getItem(kTheme);

function navigation(pages, current) {
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
  const rest = pages.slice(kOnBar);
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
      pages.map((page, i) => h('li', { class: i >= kOnBar ? 'further' : null }, link(page))),
      h('li', { class: 'opener' }, more),
    ),
  );
}

/** Shows a page with bar and navigation around it. */
export function showPage(content, { pages, current, relabel, logOut }) {
  const bar = h(
    'header',
    { class: 'bar' },
    h('a', { href: '#/overview', class: 'brand' }, icon('router'), h('span', {}, t('brand'))),
    h(
      'div',
      { class: 'bar-tools' },
      languageButton(relabel),
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
    navigation(pages, current),
    h('main', { id: 'main', tabindex: '-1' }, content),
  );
}

/** Shows content by itself, as login and first setup are. */
export const showPlain = (content, { relabel }) =>
  fill(
    root,
    h(
      'div',
      { class: 'plain-frame' },
      h('header', { class: 'plain-tools' }, languageButton(relabel), themeButton()),
      h('main', { id: 'main', tabindex: '-1' }, content),
    ),
  );
