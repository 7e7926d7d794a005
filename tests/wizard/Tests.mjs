// The tests, in the order in which they are run.
export const tests = [];
export const test = (name, run) => tests.push({ name, run });
