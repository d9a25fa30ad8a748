// What the page of a comparison marks as a difference.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { Against } from '../../page/view/against.js';
import { States } from '../../page/view/states.js';

/** A run of one execution, whose host the page knows or not. */
const runOf = (status, state) => ({
  status: [status],
  number: [1],
  states: new States({ hosts: state && { state, why: '', unfinished: [] }, made: 0 }, 0),
});

test('statuses differ as recorded, whatever is known of hosts', () => {
  for (const [own, other, differ] of [
    [runOf(4, 'stopped'), runOf(4), false],
    [runOf(4, 'stopped'), runOf(4, 'running'), false],
    [runOf(14), runOf(14, 'stopped'), false],
    [runOf(4, 'stopped'), runOf(14), true],
    [runOf(14), runOf(15), true],
  ]) {
    const marked = Against.prototype.differs.call({ own, other }, { name: 'Status' }, 0, 0);
    assert.equal(marked, differ, JSON.stringify([own.status, own.states.state, other.status, other.states.state]));
  }
});
