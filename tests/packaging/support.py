"""What the tests of packaging share. The environment says where things lie: SOURCE, CMAKE, APP, JOB_FILE, PUBLISH."""
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SOURCE = Path(os.environ['SOURCE'])
ON_MAC = sys.platform == 'darwin'
BOTH = ('arm64', 'x86_64')


def llvm(tool):
    """A tool of LLVM's on Linux; of several versions the newest that is whole."""
    whole = [folder for folder in Path('/usr/lib').glob('llvm-*/bin')
             if all((folder / name).exists() for name in ['clang', 'ld64.lld', 'llvm-otool', 'llvm-lipo'])]
    return max(whole, key=lambda folder: int(folder.parent.name.split('-')[1])) / tool


def run(*command, **options):
    return subprocess.run([str(word) for word in command], text=True, capture_output=True, **options)


class InFolder(unittest.TestCase):
    def setUp(self):
        self.folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)

    def ok(self, *command, **options):
        done = run(*command, **options)
        self.assertEqual(done.returncode, 0, f'{command}\n{done.stdout}\n{done.stderr}')
        return done.stdout + done.stderr


class WithTools(InFolder):
    """Has fake tools of macOS, which note how they are called."""

    def setUp(self):
        super().setUp()
        self.calls = self.folder / 'calls'
        self.environment = {**os.environ, 'PATH': f'{self.folder / "bin"}:/usr/bin:/bin'}
        (self.folder / 'bin').mkdir()

    def fake(self, name, script):
        tool = self.folder / 'bin' / name
        tool.write_text(f'#!/bin/sh\necho "$*" >>"{self.calls}"\n{script}\n')
        tool.chmod(0o755)

    def call(self, script, *arguments, **environment):
        self.calls.write_text('')
        return run(SOURCE / 'packaging' / script, *arguments, env={**self.environment, **environment})

    def lines(self):
        return self.calls.read_text().splitlines()


def mach_o(path, *, architectures=BOTH, library=None, loads=(), rpaths=(), minimum='14.0'):
    """Links a program for macOS, or a library of that name that loads those libraries."""
    path.parent.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        (folder / 'code.c').write_text('int main(void) { return 0; }\n')
        stubs = []
        for number, load in enumerate(['/usr/lib/libSystem.B.dylib', *loads]):
            stubs.append(folder / f'{number}.tbd')
            stubs[-1].write_text('--- !tapi-tbd\ntbd-version: 4\ntargets: [ arm64-macos, x86_64-macos ]\n'
                                 f"install-name: '{load}'\n...\n")
        linking = [word for stub in stubs for word in ('-needed_library', stub)]
        linking += [word for rpath in rpaths for word in ('-rpath', rpath)]
        linking += ['-dylib', '-install_name', library] if library else ['-e', '_main']
        for one in architectures:
            compiler = ['clang', '-arch', one] if ON_MAC else [llvm('clang'), f'--target={one}-apple-macos{minimum}']
            linker = 'ld' if ON_MAC else llvm('ld64.lld')
            for command in [[*compiler, '-c', folder / 'code.c', '-o', folder / 'code.o'],
                            [linker, '-arch', one, '-platform_version', 'macos', minimum, minimum, folder / 'code.o',
                             *linking, '-o', folder / one]]:
                subprocess.run(command, check=True)
        subprocess.run(['lipo' if ON_MAC else llvm('llvm-lipo'), '-create', *[folder / one for one in architectures],
                        '-output', path], check=True)
