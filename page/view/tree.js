// The executions below the run as rows of a tree, which fold.

const mostUnfolded = 100; // rows that are unfolded at first, if they are no more than that

export class Tree {
  constructor(recorded) {
    Object.assign(this, { recorded, folded: new Set() });
    this.putInOrder();
    this.foldDeepLevels();
    recorded.unfinished.forEach((at) => this.unfoldTo(at));
  }

  /** More was recorded. What has something below it only now is folded like the one before it on its level. */
  take(recorded) {
    const before = this.recorded;
    this.recorded = recorded;
    this.putInOrder();
    const isFolded = []; // of each level the newest
    for (let at = 0; at < recorded.count; ++at) {
      if (this.folds(at)) {
        if (!(before.children[at]?.length > 0) && isFolded[recorded.depth[at]]) {
          this.folded.add(at);
        }
        isFolded[recorded.depth[at]] = this.folded.has(at);
      }
    }
  }

  /** Each before what is below it. `behind` is the place of the first that is not below. */
  putInOrder() {
    Object.assign(this, { order: [], place: [], behind: [] });
    const { children, root, parent } = this.recorded;
    const open = [...children[root]].reverse();
    while (open.length > 0) {
      const at = open.pop();
      this.place[at] = this.order.push(at) - 1;
      for (let child = children[at].length - 1; child >= 0; --child) {
        open.push(children[at][child]);
      }
    }
    for (const at of [...this.order].reverse()) {
      this.behind[at] ??= this.place[at] + 1;
      this.behind[parent[at]] = Math.max(this.behind[parent[at]] ?? 0, this.behind[at]);
    }
  }

  /** Leaves as many levels unfolded as there is room for. */
  foldDeepLevels() {
    const { depth } = this.recorded;
    const ofLevel = [];
    this.order.forEach((at) => (ofLevel[depth[at]] = (ofLevel[depth[at]] ?? 0) + 1));
    let [level, rows] = [1, ofLevel[1] ?? 0];
    while (rows + (ofLevel[level + 1] ?? Infinity) <= mostUnfolded) {
      rows += ofLevel[++level];
    }
    this.order.filter((at) => depth[at] >= level && this.folds(at)).forEach((at) => this.folded.add(at));
  }

  folds(at) {
    return this.recorded.children[at].length > 0;
  }

  /** The rows that no folded one hides. */
  visible() {
    const rows = [];
    for (let place = 0; place < this.order.length;) {
      const at = this.order[place];
      rows.push(at);
      place = this.folded.has(at) ? this.behind[at] : place + 1;
    }
    return rows;
  }

  unfoldTo(at) {
    this.recorded
      .pathTo(at)
      .slice(0, -1)
      .forEach((above) => this.folded.delete(above));
  }

  toggle(at) {
    if (this.folds(at) && !this.folded.delete(at)) {
      this.folded.add(at);
    }
  }

  foldAll() {
    this.folded = new Set(this.order.filter((at) => this.folds(at)));
  }

  unfoldAll() {
    this.folded.clear();
  }
}
