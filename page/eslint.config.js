// What eslint expects of every script of the project; scripts/check-javascript runs it.
import js from '@eslint/js';

const readonly = (...names) => Object.fromEntries(names.map((name) => [name, 'readonly']));
const longestFunction = (max) => ({ 'max-lines-per-function': ['error', { max }] });

export default [
  js.configs.recommended,
  {
    linterOptions: { reportUnusedDisableDirectives: 'error', reportUnusedInlineConfigs: 'error' },
    rules: {
      'array-callback-return': 'error',
      complexity: ['error', 12],
      'consistent-return': 'error',
      curly: 'error',
      eqeqeq: 'error',
      'max-depth': ['error', 3],
      'no-duplicate-imports': 'error',
      'no-else-return': 'error',
      'no-eval': 'error',
      'no-implicit-coercion': 'error',
      'no-implied-eval': 'error',
      'no-new-func': 'error',
      'no-return-assign': 'error',
      'no-self-compare': 'error',
      'no-sequences': 'error',
      'no-shadow': 'error',
      'no-throw-literal': 'error',
      'no-unmodified-loop-condition': 'error',
      'no-unused-expressions': 'error',
      'no-useless-concat': 'error',
      'no-useless-return': 'error',
      'no-var': 'error',
      'object-shorthand': 'error',
      'prefer-arrow-callback': 'error',
      'prefer-const': 'error',
      'prefer-template': 'error',
    },
  },
  {
    files: ['page/view/**', 'page/statistics/**', 'page/store/**'],
    languageOptions: {
      globals: readonly(
        ...[
          'AbortController',
          'Blob',
          'EventSource',
          'Notification',
          'Option',
          'TextDecoder',
          'URL',
          'URLSearchParams',
        ],
        ...['atob', 'clearTimeout', 'document', 'fetch', 'getComputedStyle'],
        ...['requestAnimationFrame', 'setInterval', 'setTimeout', 'window'],
      ),
    },
    rules: {
      ...longestFunction(50),
      // What was recorded becomes text, never markup.
      'no-restricted-properties': [
        'error',
        ...['innerHTML', 'outerHTML', 'insertAdjacentHTML', 'write', 'writeln', 'createContextualFragment'].map(
          (property) => ({ property }),
        ),
      ],
    },
  },
  {
    files: ['page/*.js', 'tests/**'],
    languageOptions: { globals: readonly('Buffer', 'URL', 'URLSearchParams', 'console', 'fetch', 'process') },
    rules: longestFunction(40),
  },
  {
    files: ['tests/page/**', 'tests/serve-page/**'], // some of their functions run in the browser
    languageOptions: {
      globals: readonly('document', 'echarts', 'getComputedStyle', 'performance', 'requestAnimationFrame', 'window'),
    },
  },
];
