// What others on this machine, and pages of others, may send: all of it is refused, and the program
// goes on and ends well.
import assert from 'node:assert/strict';
import { linkSync, mkdirSync, symlinkSync, writeFileSync } from 'node:fs';
import { connect } from 'node:net';
import { at, serve, writePeople } from './Page.mjs';
import { test } from './Tests.mjs';

// Sends bytes, and gives what comes back until the other side closes or the answer is whole.
function send(port, bytes) {
  return new Promise((resolve) => {
    const socket = connect(port, '127.0.0.1');
    let answer = '';
    const end = () => { socket.destroy(); resolve(answer); };
    socket.on('data', (data) => {
      answer += data.toString('latin1');
      const head = answer.indexOf('\r\n\r\n');
      const length = /content-length: (\d+)/i.exec(answer);
      if (head >= 0 && length && answer.length >= head + 4 + Number(length[1])) end();
    });
    socket.on('close', () => resolve(answer));
    socket.on('error', () => resolve(answer));
    socket.write(bytes);
  });
}
const status = (answer) => Number(/^HTTP\/1\.\d (\d+)/.exec(answer)?.[1] ?? 0);
const bodyOf = (answer) => answer.slice(answer.indexOf('\r\n\r\n') + 4);

test('hostile requests are refused', async () => {
  mkdirSync(at('shown/inner'), { recursive: true });
  writePeople();
  writeFileSync(at('secret.csv'), 'secret;number\nof;1\nothers;2\n');
  writeFileSync(at('shown/data.csv'), 'a;b\n1;2\n3;4\n5;6\n');
  symlinkSync('../secret.csv', at('shown/link.csv'));
  symlinkSync('..', at('shown/up'));
  symlinkSync('../secret.csv', at('shown/out.csv'));
  symlinkSync('data.csv', at('shown/out-link.csv'));
  linkSync(at('shown/data.csv'), at('shown/hard.csv'));
  const wizard = await serve([at('shown/data.csv')]);
  const port = Number(new URL(wizard.address).port);
  const host = `127.0.0.1:${port}`;
  const token = new URL(wizard.address).searchParams.get('token');

  let sent = 0;
  // Refused: by the status that is expected, or by closing where bytes are no request at all.
  const refused = async (what, bytes, ...statuses) => {
    sent += 1;
    const answer = await send(port, bytes);
    assert.ok(statuses.includes(status(answer)), `${what}: ${answer.slice(0, 200)}`);
    assert.doesNotMatch(answer, /others;2|"others"/, what);
    assert.doesNotMatch(answer, /Access-Control-Allow/i, what);
  };
  const get = (path, headers = '') => `GET ${path} HTTP/1.1\r\nHost: ${host}\r\nConnection: close\r\n${headers}\r\n`;

  // Without the session.
  for (const path of ['/', '/app.js', '/api/jobs/1/events', '/?token=', `/?token=${'0'.repeat(token.length)}`, `/?token=${token.slice(1)}`, `/?TOKEN=${token}`]) {
    await refused(`no session: ${path}`, get(path), 401);
  }
  await refused('a session that is none', get('/', 'Cookie: textwizard=1; session=1\r\n'), 401);
  const opened = await send(port, get(`/?token=${token}`));
  assert.equal(status(opened), 303);
  assert.match(opened, /Set-Cookie: [^\r]*HttpOnly[^\r]*SameSite=Strict/i);
  const session = `Cookie: ${/Set-Cookie: ([^;]+)/i.exec(opened)[1]}\r\n`;
  await refused('the token a second time', get(`/?token=${token}`), 401);

  // DNS rebinding: another name for this address.
  for (const name of ['evil.example', `evil.example:${port}`, `127.0.0.1.evil.example:${port}`, '127.0.0.1', `127.0.0.2:${port}`, `localhost.evil.example:${port}`, `[::2]:${port}`, '']) {
    await refused(`Host: ${name}`, `GET / HTTP/1.1\r\nHost: ${name}\r\nConnection: close\r\n${session}\r\n`, 403);
  }
  await refused('two Hosts', `GET / HTTP/1.1\r\nHost: ${host}\r\nHost: evil.example\r\nConnection: close\r\n${session}\r\n`, 403);

  // A page of others that posts.
  const json = 'Content-Type: application/json\r\n';
  const own = `Origin: http://${host}\r\n`;
  const post = (path, body, headers = session + own + json) => `POST ${path} HTTP/1.1\r\nHost: ${host}\r\nConnection: close\r\n${headers}Content-Length: ${Buffer.byteLength(body)}\r\n\r\n${body}`;
  const start = '{"path":"data.csv","given":{}}';
  for (const origin of ['http://evil.example', 'null', `https://${host}`, `http://${host}.evil.example`, 'http://127.0.0.1:1']) {
    await refused(`Origin: ${origin}`, post('/api/sniff', start, `${session}Origin: ${origin}\r\n${json}`), 403);
  }
  await refused('no Origin', post('/api/sniff', start, session + json), 403);
  await refused('a site that is another', post('/api/sniff', start, `${session}${own}Sec-Fetch-Site: cross-site\r\n${json}`), 403);
  await refused('no session', post('/api/sniff', start, own + json), 401);
  for (const type of ['text/plain', 'application/x-www-form-urlencoded', 'multipart/form-data; boundary=x', 'application/jsonp']) {
    await refused(type, post('/api/sniff', start, `${session}${own}Content-Type: ${type}\r\n`), 415);
  }
  for (const method of ['PUT', 'DELETE', 'PATCH', 'OPTIONS', 'TRACE']) {
    await refused(method, `${method} / HTTP/1.1\r\nHost: ${host}\r\nConnection: close\r\n${session}\r\n`, 405, 400);
  }

  // Files that are not below the root, or not there.
  for (const path of ['../secret.csv', 'inner/../../secret.csv', at('secret.csv'), 'link.csv', 'up/secret.csv', '/etc/passwd', '', '.', 'inner', '~/x', 'data.csv\u0000.csv', 'C:\\secret.csv']) {
    for (const name of ['sniff', 'types']) await refused(`${name} ${path}`, post(`/api/${name}`, JSON.stringify({ path, given: {} })), 400);
  }
  for (const folder of ['..', '/', 'up', 'inner/../..']) await refused(`files ${folder}`, post('/api/files', JSON.stringify({ folder })), 400);
  for (const path of ['/../../etc/passwd', '/..%2f..%2fetc/passwd', '/%2e%2e/secret.csv', '/data.csv', '/steps/../../secret.csv']) {
    await refused(`page ${path}`, get(path, session), 404, 400);
  }

  // Outputs over an input, through links, out of the root; commands and options that reach elsewhere.
  const command = `GET DATA /TYPE=TXT /FILE='${at('shown/data.csv')}' /DELIMITERS=';' /FIRSTCASE=2 /VARIABLES=a F8 b F8.\n`;
  const order = (more) => JSON.stringify({ command, options: [], outputs: [], replace: true, ...more });
  for (const output of ['data.csv', 'hard.csv', 'out.csv', 'out-link.csv', '../new.csv', 'up/new.csv', at('new.csv'), 'nowhere/new.csv', 'inner', 'new.exe']) {
    await refused(`output ${output}`, post('/api/import', order({ outputs: [output] })), 400);
  }
  for (const options of [['--rejects', 'x'], ['--cases', 'data.csv'], ['-o', at('new.csv')], ['--messages', 'data.csv'], ['--decimal']]) {
    await refused(`options ${options}`, post('/api/import', order({ options })), 400);
  }
  for (const text of [command.replace('shown/data.csv', 'secret.csv'), command + command, 'INSERT FILE=\'/etc/passwd\'.', '']) {
    await refused(`command ${text}`, post('/api/import', order({ command: text })), 400);
  }

  // What is no request that anybody understands, or too much of one.
  for (const body of ['', '[]', '{', 'null', '{"path":1,"given":{}}', '{"path":"data.csv","given":{"secret":1}}', '{"path":"data.csv","given":{"fixed":"9-1"}}', '['.repeat(100000)]) {
    await refused(`body ${body.slice(0, 40)}`, post('/api/sniff', body), 400);
  }
  await refused('a body that is too long', post('/api/sniff', JSON.stringify({ path: 'x'.repeat(2 << 20) })), 413, 0);
  await refused('a length that is claimed', `POST /api/sniff HTTP/1.1\r\nHost: ${host}\r\n${session}${own}${json}Content-Length: 99999999999\r\n\r\n{}`, 413);
  for (const bytes of ['\x16\x03\x01\x02\x00\x01\r\n\r\n', 'GET\r\n\r\n', 'GET / HTTP/9.9\r\n\r\n', `GET /${'a'.repeat(100000)} HTTP/1.1\r\n\r\n`, `GET / HTTP/1.1\r\nHost: ${host}\r\nX: ${'b'.repeat(100000)}\r\n\r\n`]) {
    await refused(`bytes ${JSON.stringify(bytes.slice(0, 30))}`, bytes, 0, 400, 401, 403, 414, 431);
  }
  await refused('a request that is never finished', `POST /api/sniff HTTP/1.1\r\nHost: ${host}\r\n${session}${own}${json}Content-Length: 30\r\n\r\n{"pa`, 0, 400, 408);
  for (const job of ['0', '-1', '99', '99999999999999999999', 'x', '../files']) await refused(`job ${job}`, get(`/api/jobs/${job}/events`, session), 404);

  assert.ok(sent >= 40, `${sent} requests`);
  // It goes on, and texts of a file come back as they are.
  const answer = await send(port, post('/api/sniff', start));
  assert.equal(status(answer), 200);
  assert.equal(JSON.parse(bodyOf(answer)).reading.delimiter, ';');
  assert.equal(await wizard.stop(), 0);
});
