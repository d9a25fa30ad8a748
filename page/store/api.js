// What the page asks the server.

/** The query string of parameters: a list gives several, what is empty or missing none. */
export function queryOf(parameters) {
  const query = new URLSearchParams();
  for (const [name, value] of Object.entries(parameters)) {
    [value]
      .flat()
      .filter((one) => one !== '' && one !== null && one !== undefined)
      .forEach((one) => query.append(name, one));
  }
  return String(query);
}

/** A relative address with parameters. */
export function addressOf(path, parameters = {}) {
  const query = queryOf(parameters);
  return query ? `./${path}?${query}` : `./${path}`;
}

/**
 * Asks the server.
 * @param path such as 'api/runs'
 * @param signal of an AbortController, to give up
 * @returns what the JSON of the answer holds
 * @throws Error with the server's words, or with why there was no answer
 */
export async function ask(path, parameters, signal) {
  let answer;
  try {
    answer = await fetch(addressOf(path, parameters), { signal, cache: 'no-store' });
  } catch (error) {
    throw error.name === 'AbortError' ? error : new Error('The server cannot be reached.');
  }
  const json = await answer.json().catch(() => ({ error: `The server answered ${answer.status} without words.` }));
  if (!answer.ok || json.error) {
    throw new Error(json.error || `The server answered ${answer.status}.`);
  }
  return json;
}
