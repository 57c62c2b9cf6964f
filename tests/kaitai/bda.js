// The program, which the description is compared with.
'use strict';

const { execFileSync } = require('child_process');
const assert = require('assert');

const BROKEN = 3; // its exit code for files that are

class Bda {
  constructor(program) {
    this.program = program;
  }

  // What it prints. `isBroken`: the file that it reads is meant to be.
  run(words, { library, isBroken = false } = {}) {
    const all = ['-q', ...words, ...(library === undefined ? [] : ['--library', library])];
    try {
      return execFileSync(this.program, all, { encoding: 'utf8', maxBuffer: 1 << 28, stdio: 'pipe' });
    } catch (error) {
      if (isBroken && error.status === BROKEN) return error.stdout;
      throw new Error(`bda ${words.join(' ')}: ${error.status}\n${error.stderr}`);
    }
  }

  // The objects that a verb prints of a file.
  told(verb, file, isBroken) {
    const lines = this.run([verb, file, '--json'], { isBroken }).split('\n');
    return lines.filter((line) => line !== '').map((line) => JSON.parse(line));
  }

  // The models of these targets in a file.
  shown(file, targets) {
    const lines = this.run(['show', ...targets, '--from', file, '--json']).trimEnd().split('\n');
    assert.strictEqual(lines.length, targets.length, file);
    return lines.map((line) => JSON.parse(line)).map(({ target, ...models }) => models);
  }
}

module.exports = { Bda };
