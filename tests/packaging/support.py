"""What the tests of packaging share. The environment says where things lie: SOURCE, CMAKE, APP."""
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

SOURCE = Path(os.environ['SOURCE'])
CMAKE = os.environ['CMAKE']


def run(*command, **options):
    return subprocess.run([str(word) for word in command], text=True, capture_output=True, **options)


class WithTools(unittest.TestCase):
    """Has a folder, and in it fake tools of macOS, which note how they are called."""

    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.calls = self.folder / 'calls'
        self.environment = {**os.environ, 'PATH': f'{self.folder / "bin"}:/usr/bin:/bin'}
        (self.folder / 'bin').mkdir()

    def ok(self, *command, **options):
        done = run(*command, **options)
        self.assertEqual(done.returncode, 0, f'{command}\n{done.stdout}\n{done.stderr}')
        return done.stdout + done.stderr

    def fake(self, name, script):
        tool = self.folder / 'bin' / name
        tool.write_text(f'#!/bin/sh\necho "$*" >>"{self.calls}"\n{script}\n')
        tool.chmod(0o755)

    def call(self, script, *arguments, **environment):
        self.calls.write_text('')
        return run(SOURCE / 'packaging' / script, *arguments, env={**self.environment, **environment})

    def lines(self):
        return self.calls.read_text().splitlines()
