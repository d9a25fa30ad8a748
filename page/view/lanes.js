// The lanes of the timeline: one for each level of the tree, in which what overlaps lies in sub-lanes, then those of
// signs, then one for each kind of event. What there is no room for shares the last lane.

/**
 * Distributes executions, sorted by their start, over as few sub-lanes as keep them apart. `reach` is how far each and
 * all before it reach.
 */
function packed(recorded, executions, mostSubLanes) {
  const lanes = [];
  for (const at of executions) {
    let lane = lanes.findIndex(({ reach }) => reach[reach.length - 1] <= recorded.started[at]);
    if (lane < 0) {
      lane = lanes.length < mostSubLanes ? lanes.push({ executions: [], reach: [] }) - 1 : mostSubLanes - 1;
    }
    const { executions: own, reach } = lanes[lane];
    own.push(at);
    reach.push(Math.max(reach[reach.length - 1] ?? -Infinity, recorded.endOf(at)));
  }
  return lanes;
}

/** What most of a level are. */
function levelName(recorded, executions, depth) {
  const counts = new Map();
  for (const at of executions) {
    const name = recorded.versions.get(recorded.version[at])?.name ?? `level ${depth}`;
    counts.set(name, (counts.get(name) ?? 0) + 1);
  }
  return [...counts].sort((a, b) => b[1] - a[1])[0][0];
}

function lastLevels(recorded, executions, depth) {
  const deepest = executions.reduce((deep, at) => Math.max(deep, recorded.depth[at]), depth);
  return deepest > depth ? `levels ${depth} to ${deepest}` : levelName(recorded, executions, depth);
}

/** Several kinds as one. If there are only slices of one of them, there are only slices of all. */
function together({ raw }, kinds) {
  const total = kinds.reduce((sum, { recorded }) => sum + recorded, 0);
  const binned = kinds.filter(({ slices }) => slices !== null);
  const events = kinds.flatMap((kind) => (kind.slices ? [] : kind.events)).sort((a, b) => a.at - b.at);
  if (binned.length === 0) {
    return { slices: null, events, recorded: total };
  }
  const { from, to } = raw.slices;
  const counts = binned[0].slices.counts.map((unused, at) =>
    binned.reduce((sum, kind) => sum + kind.slices.counts[at], 0),
  );
  for (const { at } of events) {
    ++counts[Math.min(Math.floor(((at - from) / (to - from)) * counts.length), counts.length - 1)];
  }
  return { slices: { counts }, events: [], recorded: total };
}

export function lanesOf(recorded, room) {
  const levels = [];
  for (let at = 0; at < recorded.count; ++at) {
    (levels[Math.min(recorded.depth[at], room.levels - 1)] ??= []).push(at);
  }
  const lanes = levels.map((executions, depth) => {
    executions.sort((a, b) => recorded.started[a] - recorded.started[b] || a - b);
    const subLanes = packed(recorded, executions, room.subLanes);
    const height = subLanes.length > 4 ? 12 : 20;
    return {
      label: depth < room.levels - 1 ? levelName(recorded, executions, depth) : lastLevels(recorded, executions, depth),
      total: executions.length,
      subLanes,
      subHeight: height,
      height: height * subLanes.length,
    };
  });
  const kinds = recorded.kinds.slice(0, room.kinds);
  const others = recorded.kinds.slice(room.kinds);
  if (others.length > 0) {
    kinds.push({ name: `${others.length} further kinds`, ...together(recorded, others) });
  }
  lanes.push(...recorded.signs.map((lane) => ({ ...lane, total: lane.signs.length, height: 18 })));
  lanes.push(...kinds.map((kind) => ({ label: kind.name, total: kind.recorded, kind, height: 18 })));
  let top = 0;
  for (const lane of lanes) {
    lane.top = top;
    top += lane.height + 7;
  }
  return lanes;
}
