"""Makes programs and libraries for macOS on Linux."""
import subprocess
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
        linking = [word for stub in stubs for word in ('-needed_library', stub)]
        linking += [word for rpath in rpaths for word in ('-rpath', rpath)]
        linking += ['-dylib', '-install_name', library] if library else ['-e', '_main']
        for one in architectures:
            for command in [[llvm('clang'), f'--target={one}-apple-macos{minimum}', '-c', folder / 'code.c', '-o',
                             folder / 'code.o'],
                            [llvm('ld64.lld'), '-arch', one, '-platform_version', 'macos', minimum, minimum,
                             folder / 'code.o', *linking, '-o', folder / one]]:
                subprocess.run(command, check=True)
        subprocess.run([llvm('llvm-lipo'), '-create', *[folder / one for one in architectures], '-output', path],
                       check=True)
