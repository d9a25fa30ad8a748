// How a parameter changed over months.

import { button, make, show } from '../view/element.js';
import { readable } from '../view/text.js';
import { addressOf } from './api.js';
import { keepText } from './kept.js';
import { millisecondsOf } from './moment.js';
import { questionOf, TrendForm } from './trend-form.js';
import { TrendPlot } from './trend-plot.js';
import { TrendTable } from './trend-table.js';
import { groupsOf, wordsOf } from './trend-words.js';

const leastZoom = 0.9; // of the time that is shown; more of it is not worth a question
const leastSpan = 1000; // milliseconds

export const trends = {
  name: 'trends',
  title: 'Trends',
  begin: (section, shell) => new Trends(section, shell),
};

const timeOf = (milliseconds) => new Date(milliseconds).toISOString();

class Trends {
  constructor(section, { address, ask, live }) {
    Object.assign(this, { address, ask, question: null, span: null });
    this.form = new TrendForm((question) => this.choose(question));
    this.title = make('h2');
    this.words = make('p', 'hint');
    this.words.setAttribute('role', 'status');
    this.zooms = make('div', 'bar', ...this.zoomButtons());
    const chart = make('div', 'chart');
    chart.setAttribute('role', 'img');
    this.table = new TrendTable();
    this.keys = make(
      'p',
      'hint',
      'A band goes from the minimum to the maximum, a darker one has half of the numbers, ',
    );
    this.keys.append('the line is the median. Ctrl and wheel to zoom. A click opens the run of the nearer extreme.');
    this.picture = make('div', 'trend', this.title, this.words, this.zooms, this.keys, chart, this.table.element);
    section.append(make('h1', '', 'Trends'), this.form.form, this.form.error, this.picture);
    this.plot = new TrendPlot(chart, {
      open: ({ store, run }) => window.location.assign(addressOf('run', { store, run })),
      zoom: (from, to) => this.zoom(from, to),
    });
    this.chart = chart;
    live.onState(({ stores, instruments }) => {
      this.form.offerStores(stores);
      this.form.offer('instrument', [...new Set(instruments.map(({ name }) => name))].sort());
    });
  }

  show(chosen) {
    const question = questionOf(chosen);
    this.form.show(question);
    this.offerParameters(question.store);
    this.load(question);
  }

  /** The reader has chosen something else. */
  choose(question) {
    this.form.show(question);
    this.address.choose(question);
    this.load(question);
  }

  async offerParameters(store) {
    try {
      const { parameters } = await this.ask('api/parameters', { store });
      this.form.offer(
        'parameter',
        parameters.map(({ name }) => name),
      );
    } catch {
      // a name can be typed
    }
  }

  async load(question) {
    this.asking?.abort();
    this.picture.hidden = question.parameter === '';
    this.form.complain('');
    if (this.picture.hidden) {
      return;
    }
    const asking = new AbortController();
    this.asking = asking;
    this.picture.setAttribute('aria-busy', 'true');
    try {
      this.draw(await this.ask('api/trends', question, asking.signal), question);
    } catch (error) {
      if (error.name === 'AbortError') {
        return;
      }
      this.form.complain(error.message);
      this.picture.hidden = true;
    }
    this.picture.removeAttribute('aria-busy');
  }

  draw(trend, question) {
    const groups = groupsOf(trend);
    const bins = groups.flatMap((group) => group.bins);
    const [first, last] = [
      bins.map(({ from }) => from).sort()[0],
      bins
        .map(({ to }) => to)
        .sort()
        .pop(),
    ];
    this.span = bins.length > 0 ? [millisecondsOf(first), millisecondsOf(last)] : null;
    this.question = question;
    show(this.title, trend.parameter);
    this.title.append(trend.unit ? ` [${readable(trend.unit)}]` : '');
    keepText(this.words, wordsOf(trend).join(' '));
    [this.zooms, this.keys, this.chart, this.table.element].forEach((part) => (part.hidden = bins.length === 0));
    this.chart.setAttribute('aria-label', `Minimum, quantiles and maximum of ${readable(trend.parameter)} over time`);
    this.plot.show(trend, groups);
    const titles = { instrument: 'Instrument', activity: 'Activity' };
    this.table.show(titles[trend.by] ?? 'Parameter', groups);
  }

  zoomButtons() {
    const moved = (begin, end) => () => {
      const [from, to] = this.span;
      this.askFor(from + begin * (to - from), from + end * (to - from));
    };
    return [
      button('', 'Earlier', moved(-0.5, 0.5)),
      button('', 'Later', moved(0.5, 1.5)),
      button('', 'Closer', moved(0.25, 0.75)),
      button('', 'Wider', moved(-0.5, 1.5)),
    ];
  }

  /** Asks again for what the reader looks at, unless it is nearly all that is shown. */
  zoom(from, to) {
    const [begin, end] = this.span;
    if (to - from < leastZoom * (end - begin)) {
      this.askFor(from, to);
    }
  }

  askFor(from, to) {
    const end = Math.max(to, from + leastSpan);
    this.choose({ ...this.question, since: timeOf(from), until: timeOf(end) });
  }
}
