#!/usr/bin/env -S node --experimental-vm-modules --no-warnings
// Checks the files of the web page: every script parses, nothing puts text into the page as markup
// or needs more than the page's Content-Security-Policy allows, both dictionaries have the same
// keys and placeholders and all that the scripts name, and the page stays small.
// Usage: check_web FOLDER

import { readdirSync, readFileSync } from 'node:fs';
import { extname, join, relative } from 'node:path';
import { SourceTextModule } from 'node:vm';
import { gzipSync } from 'node:zlib';

const kMostBytes = 100 * 1024;
const kForbidden = [
  [/\b(inner|outer)HTML\b|insertAdjacentHTML|document\.write|createContextualFragment|DOMParser/, 'text as markup'],
  [/\beval\s*\(|new Function\b|\bset(Timeout|Interval)\s*\(\s*['"`]/, 'text as a program'],
  [/javascript:/i, 'a link as a program'],
  [/setAttribute\(\s*['"`](on|style)/, 'an attribute that the policy forbids'],
];
const kForbiddenInPage = [
  [/\son\w+\s*=|<script(?![^>]*\ssrc=)/i, 'an inline script'],
  [/<style|\sstyle\s*=|unsafe-/i, 'inline style, or an unsafe policy'],
];

const folder = process.argv[2];
const files = readdirSync(folder, { recursive: true, withFileTypes: true })
  .filter((entry) => entry.isFile() && entry.name !== 'CMakeLists.txt')
  .map((entry) => join(entry.parentPath ?? entry.path, entry.name));
const text = new Map(files.map((file) => [file, readFileSync(file, 'utf8')]));
const scripts = files.filter((file) => extname(file) === '.js');
const faults = [];
const fault = (file, what) => faults.push(`${relative(folder, file)}: ${what}`);

for (const file of scripts) {
  try {
    new SourceTextModule(text.get(file));
  } catch (error) { fault(file, error); }
  for (const [pattern, what] of kForbidden) if (pattern.test(text.get(file))) fault(file, what);
}
const page = join(folder, 'index.html');
for (const [pattern, what] of kForbiddenInPage) if (pattern.test(text.get(page))) fault(page, what);

const dictionary = async (name) => {
  const source = text.get(join(folder, 'js/strings', name));
  return (await import(`data:text/javascript,${encodeURIComponent(source)}`)).default;
};
const [en, zh] = [await dictionary('en.js'), await dictionary('zh.js')];
const placeholders = (sentence) => (sentence.match(/\{\w+\}/g) ?? []).sort().join();
for (const key of new Set([...Object.keys(en), ...Object.keys(zh)])) {
  const alike = en[key] && zh[key] && placeholders(en[key]) === placeholders(zh[key]);
  if (!alike) faults.push(`dictionaries: ${key} is not in both, or with other placeholders`);
}
for (const file of scripts) {
  for (const [, key] of text.get(file).matchAll(/(?:\bt\(|\b(?:label|hint|title|intro|unit|submit|empty|key): )'([a-z][\w.]*)'/g)) {
    if (!(key in en)) fault(file, `the dictionaries have no ${key}`);
  }
}

const bytes = files.reduce((sum, file) => sum + gzipSync(readFileSync(file), { level: 9 }).length, 0);
if (bytes > kMostBytes) faults.push(`${bytes} bytes gzipped, at most ${kMostBytes}`);
console.log(faults.join('\n') || `${files.length} files, ${Object.keys(en).length} sentences, ${bytes} bytes gzipped`);
process.exitCode = faults.length > 0 ? 1 : 0;
