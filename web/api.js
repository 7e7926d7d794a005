// Requests to the program that serves this page, and the events of its jobs.

export class Refusal extends Error {
  constructor(error) {
    super(error.text);
    Object.assign(this, error);
  }
}

export async function ask(path, body = {}, signal = undefined) {
  let response;
  try {
    response = await fetch(path, {
      method: 'POST',
      headers: { 'Content-Type': 'application/json' },
      body: JSON.stringify(body),
      signal,
    });
  } catch (error) {
    if (error.name === 'AbortError') throw error;
    throw new Refusal({ text: 'The program that serves this page does not answer. Was it ended?' });
  }
  const answer = await response.json().catch(() => ({ error: { text: `The program answered ${response.status}.` } }));
  if (answer.error) throw new Refusal(answer.error);
  if (!response.ok) throw new Refusal({ text: `The program answered ${response.status}.` });
  return answer;
}

// Follows a job: `progress` for each step, then the answer of `done`. Cancelling resolves to null.
export function follow(job, progress) {
  return new Promise((resolve, reject) => {
    const events = new EventSource(`api/jobs/${job}/events`);
    const end = (action, value) => {
      events.close();
      action(value);
    };
    events.addEventListener('progress', (event) => progress(JSON.parse(event.data)));
    events.addEventListener('done', (event) => end(resolve, JSON.parse(event.data)));
    events.addEventListener('cancelled', () => end(resolve, null));
    events.addEventListener('failed', (event) => end(reject, new Refusal(JSON.parse(event.data).error)));
    events.addEventListener('error', () => {
      if (events.readyState === EventSource.CLOSED) {
        end(reject, new Refusal({ text: 'The program that serves this page does not answer. Was it ended?' }));
      }
    });
  });
}
