#!/usr/bin/env python3
"""Makes programs and libraries for macOS on Linux. Run as a program it takes the place of macdeployqt."""
import re
import subprocess
import sys
import tempfile
from pathlib import Path

BOTH = ('arm64', 'x86_64')


def llvm(tool):
    """A tool of LLVM's; of several versions the newest that is whole."""
    whole = [folder for folder in Path('/usr/lib').glob('llvm-*/bin')
             if all((folder / name).exists() for name in ['clang', 'ld64.lld', 'llvm-otool', 'llvm-lipo'])]
    return max(whole, key=lambda folder: int(folder.parent.name.split('-')[1])) / tool


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
        linking = [f'-Wl,-needed_library,{stub}' for stub in stubs] + [f'-Wl,-rpath,{rpath}' for rpath in rpaths]
        linking += ['-dynamiclib', '-install_name', library] if library else []
        for one in architectures:
            subprocess.run([llvm('clang'), f'--target={one}-apple-macos{minimum}', '-fuse-ld=lld', '-nostdlib',
                            folder / 'code.c', *linking, '-o', folder / one], check=True)
        subprocess.run([llvm('llvm-lipo'), '-create', *[folder / one for one in architectures], '-output', path],
                       check=True)


def deploy(app, *_):
    """Stands in for Qt's macdeployqt: puts libraries without content into a bundle, under the names that its programs
    load, and the plug-in for macOS's windows."""
    contents = Path(app) / 'Contents'
    for program in [*contents.glob('MacOS/*'), *contents.glob('Helpers/*')]:
        commands = subprocess.run([llvm('llvm-otool'), '-L', program], check=True, capture_output=True, text=True).stdout
        for name in re.findall(r'^\s+@rpath/(\S+)', commands, re.MULTILINE):
            mach_o(contents / 'Frameworks' / name, architectures=['arm64'], library=f'@rpath/{name}')
    mach_o(contents / 'PlugIns/platforms/libqcocoa.dylib', architectures=['arm64'], library='@rpath/libqcocoa.dylib',
           loads=['@rpath/QtGui.framework/Versions/A/QtGui'])


if __name__ == '__main__':
    deploy(*sys.argv[1:])
