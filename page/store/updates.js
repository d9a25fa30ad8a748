// Asks for something again when there is more of it: never twice at once, and at most a tenth of the time, however long
// an answer takes.

const share = 10;
const tryAgain = 5000; // milliseconds after an error

export class Updates {
  /** @param ask asks for it and shows it; answers a promise of whether that was done. */
  constructor(ask) {
    Object.assign(this, { ask, isWanted: false, isUrgent: false, isAsking: false, next: 0 });
  }

  /** There is more; `isUrgent` where the reader must not wait for it. */
  want(isUrgent = false) {
    this.isWanted = true;
    this.isUrgent ||= isUrgent;
    this.plan();
  }

  plan() {
    clearTimeout(this.timer);
    if (this.isWanted && !this.isAsking) {
      this.timer = setTimeout(() => this.begin(), this.isUrgent ? 0 : Math.max(0, this.next - Date.now()));
    }
  }

  async begin() {
    Object.assign(this, { isWanted: false, isUrgent: false, isAsking: true });
    const begun = Date.now();
    const isDone = await this.ask();
    this.isAsking = false;
    this.next = Date.now() + (isDone ? share * (Date.now() - begun) : tryAgain);
    this.isWanted ||= !isDone;
    this.plan();
  }
}
