// ECharts, which stands in the page as a script of its own.

export const { graphic, init } = globalThis.echarts;
