// The runs that are asked for, as far as they were loaded, the newest first.

const atOnce = 200;
const mostAtOnce = 500; // that api/runs gives

export const keyOf = (run) => `${run.store} ${run.guid}`;

export class RunList {
  /** @param ask of api.js; @param changed called when there is something else to show */
  constructor(ask, changed) {
    Object.assign(this, { ask, changed, runs: [], next: null, filter: null, error: '', isLoading: false });
  }

  get isWhole() {
    return this.filter !== null && this.next === null && !this.isLoading;
  }

  /** Begins anew, with what is asked. What was shown stays until the answer is there. */
  async load(filter) {
    this.filter = filter;
    await this.request({ limit: atOnce }, ({ runs, next }) => Object.assign(this, { runs, next }));
  }

  /** Loads those that follow. */
  async more(limit = atOnce) {
    if (this.isLoading) {
      await this.loading;
    } else if (this.next !== null) {
      await this.request({ limit, after: this.next }, ({ runs, next }) => {
        const known = new Set(this.runs.map(keyOf));
        this.runs = [...this.runs, ...runs.filter((run) => !known.has(keyOf(run)))];
        this.next = next;
      });
    }
  }

  /** Looks again at the newest ones: some are new, some have ended. */
  async refresh() {
    if (this.filter === null || this.isLoading) {
      return;
    }
    const limit = Math.min(mostAtOnce, Math.max(atOnce, this.runs.length));
    await this.request({ limit }, ({ runs, next }) => {
      const last = runs.length > 0 ? keyOf(runs[runs.length - 1]) : '';
      const at = this.runs.findIndex((run) => keyOf(run) === last);
      if (next === null || at < 0) {
        Object.assign(this, { runs, next }); // all there are, or so many new ones that nothing is left of the others
      } else {
        this.runs = [...runs, ...this.runs.slice(at + 1)];
      }
    });
  }

  request(parameters, take) {
    this.loading = this.answer(parameters, take);
    return this.loading;
  }

  async answer(parameters, take) {
    this.abort?.abort();
    const abort = new AbortController();
    this.abort = abort;
    this.isLoading = true;
    this.changed();
    try {
      const answer = await this.ask('api/runs', { ...this.filter, ...parameters }, abort.signal);
      if (abort === this.abort) {
        this.error = '';
        take(answer);
      }
    } catch (error) {
      if (abort === this.abort) {
        this.error = error.message;
      }
    }
    if (abort === this.abort) {
      this.isLoading = false;
      this.changed();
    }
  }
}
