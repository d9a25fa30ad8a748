// check-browsers.js MODULES FILE...: names what scripts, styles and documents use and the oldest browsers of the pages
// lack. MODULES is a folder of npm packages. The bundler takes care of the language itself; this is about what the
// browser has: objects and their methods, properties and values of styles, elements.
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { resolve } from 'node:path';

const oldest = { chrome: 96, firefox: 94, safari: 15.1 }; // of November 2021
// Without these a page is less handsome, or less handy on paper, but whole. Each list of fonts ends with one that every
// browser has.
const ornaments = new Set(['color-scheme', 'font-family', 'overflow-anchor', '@page', 'size']);
const ofLibrary = new Set(['dispose', 'resize']); // methods of what draws
const [modules, ...files] = process.argv.slice(2);
const require = createRequire(resolve(modules, 'x'));
const known = require('@mdn/browser-compat-data');
const espree = require('espree');
const css = require('css-tree');

const number = (version) => parseFloat(String(version).replace('≤', ''));
const isIn = (statement, version) =>
  !statement.flags &&
  !statement.prefix &&
  !statement.alternative_name &&
  number(statement.version_added) <= version &&
  !(number(statement.version_removed) <= version);

/** Those of the oldest browsers that lack something; none for what is not described. */
function lacking(thing) {
  const support = thing?.__compat?.support;
  return Object.keys(oldest).filter(
    (name) => support && ![support[name]].flat().some((one) => isIn(one, oldest[name])),
  );
}

const ofObjects = { ...known.api, ...known.javascript.builtins };
const methods = new Map(); // the objects that have a method, by its name
for (const object of Object.values(ofObjects)) {
  for (const [name, member] of Object.entries(object)) {
    methods.set(name, [...(methods.get(name) ?? []), member]);
  }
}
const types = new Map(); // functions and words of styles, by name
(function gather(object) {
  for (const [name, type] of Object.entries(object).filter(([key]) => key !== '__compat')) {
    types.set(name, type);
    gather(type);
  }
})(known.css.types);

const complaints = [];
function complain(file, line, what, browsers) {
  if (browsers.length > 0 && !ornaments.has(what.split(':')[0])) {
    const those = browsers.map((name) => `${name} ${oldest[name]}`);
    complaints.push(`${file}:${line}: ${what} is missing in ${those.join(', ')}`);
  }
}

/** A method lacks where every object with one of that name lacks it. */
function lackingMethod(name) {
  const all = (methods.get(name) ?? []).map(lacking);
  return all.length > 0 && all.every((list) => list.length > 0) ? all[0] : [];
}

/** Calls a function with a node of a script and all below it. */
function walk(node, work) {
  work(node);
  Object.values(node)
    .flat()
    .filter((child) => child?.loc && child.type)
    .forEach((child) => walk(child, work));
}

const nameOf = (node) => (node?.type === 'Identifier' ? node.name : '');
const own = new Set(ofLibrary); // names of methods that are not the browser's
const trees = new Map();
function readScript(file) {
  const tree = espree.parse(readFileSync(file, 'utf8'), { ecmaVersion: 'latest', sourceType: 'module', loc: true });
  trees.set(file, tree);
  walk(tree, ({ key, value }) => /^(Arrow)?Function/.test(value?.type) && own.add(nameOf(key)));
}

function memberOf(object, name) {
  const holder = object === 'window' ? known.api.Window : ofObjects[object];
  return holder?.[`${name}_static`] ?? holder?.[name];
}

function checkMethod({ type, computed, object, property }, say) {
  const isOther = type === 'MemberExpression' && !computed && object.type !== 'ThisExpression';
  if (isOther && !own.has(property.name) && !memberOf(nameOf(object), property.name)) {
    say(`.${property.name}()`, lackingMethod(property.name));
  }
}

function checkScript(file) {
  const asked = new Set(); // objects for which the script itself asks: 'Name' in window
  walk(
    trees.get(file),
    ({ type, operator, left }) => type === 'BinaryExpression' && operator === 'in' && asked.add(left.value),
  );
  walk(trees.get(file), (node) => {
    const say = (what, browsers) => complain(file, node.loc.start.line, what, browsers);
    const called = nameOf(node.callee);
    if (/^(New|Call)Expression$/.test(node.type) && !asked.has(called)) {
      say(called, lacking(ofObjects[called]));
      checkMethod(node.callee, say);
    }
    if (node.type !== 'MemberExpression' || node.computed || asked.has(nameOf(node.object))) {
      return;
    }
    const [object, { name }] = [nameOf(node.object), node.property];
    say(`${object}.${name}`, lacking(memberOf(object, name)));
  });
}

/** What a declaration of a style uses: [what, thing] of each. */
function usedBy({ property, value }) {
  const ofProperty = known.css.properties[property];
  const used = [[property, ofProperty]];
  css.walk(value, ({ type, name }) => {
    if (type === 'Identifier') {
      used.push([`${property}: ${name}`, ofProperty?.[name]]);
    } else if (type === 'Function') {
      used.push([`${name}()`, ofProperty?.[name] ?? types.get(name)]);
    }
  });
  return used;
}

/** What a browser lacks of a declaration does not matter where one before it, or a prefixed one, stands in for it. */
function checkBlock(file, block) {
  const met = new Set();
  for (const node of block.children.toArray().filter(({ type }) => type === 'Declaration')) {
    const { property, loc } = node;
    const lacks = property.startsWith('-') ? [] : usedBy(node).map(([what, thing]) => [what, lacking(thing)]);
    const isWhole = lacks.every(([, browsers]) => browsers.length === 0);
    if (!isWhole && !met.has(property)) {
      lacks.forEach(([what, browsers]) => complain(file, loc.start.line, what, browsers));
    } else if (isWhole) {
      met.add(property.replace(/^-\w+-/, ''));
    }
  }
}

function checkStyle(file) {
  const tree = css.parse(readFileSync(file, 'utf8'), { positions: true, parseCustomProperty: false });
  css.walk(tree, function check(node) {
    if (this.atrule?.name === 'supports') {
      return; // it asks the browser itself
    }
    const line = node.loc?.start.line;
    if (node.type === 'Atrule' && node.name !== 'supports') {
      complain(file, line, `@${node.name}`, lacking(known.css['at-rules'][node.name]));
    } else if (node.type.startsWith('Pseudo')) {
      complain(file, line, `:${node.name}`, lacking(known.css.selectors[node.name]));
    } else if (node.type === 'Block') {
      checkBlock(file, node);
    }
  });
}

function checkDocument(file) {
  readFileSync(file, 'utf8')
    .split('\n')
    .forEach((text, at) => {
      for (const [, name] of text.matchAll(/<([a-z]\w*)/g)) {
        complain(file, at + 1, `<${name}>`, lacking(known.html.elements[name]));
      }
    });
}

const checks = { js: checkScript, css: checkStyle, html: checkDocument };
const kindOf = (file) => file.split('.').pop();
files.filter((file) => kindOf(file) === 'js').forEach(readScript);
files.forEach((file) => checks[kindOf(file)](file));
complaints.forEach((complaint) => console.error(complaint));
process.exitCode = complaints.length > 0 ? 1 : 0;
