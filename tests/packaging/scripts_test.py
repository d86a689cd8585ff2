"""Tests of the scripts that sign a bundle, have a package notarised and look at one. Apple's tools that only a Mac has
are fakes; what reads programs is LLVM's, under the names of Apple's."""
import os
import re
import shutil
import tempfile
import unittest
from pathlib import Path
from xml.etree import ElementTree

from mach_o import BOTH, llvm, mach_o
from support import CMAKE, SOURCE, WithTools

QT_CORE = 'QtCore.framework/Versions/A/QtCore'
PLUGIN = 'PlugIns/platforms/libqcocoa.dylib'
MENU = 'case "$*" in *--menu-dump) echo "on  Quit" ;; '
FRAMEWORKS = '@executable_path/../Frameworks'
RELEASE, TRIAL = 'Korvel-1.2.0-cn.pkg', 'Korvel-1.2.0-trial-cn.pkg'


class Sign(WithTools):
    def test_signs_everything_from_the_inside_out_and_stops_at_the_first_refusal(self):
        app = self.folder / 'Kor vel.app'
        for file in ['Info.plist', 'MacOS/korvel-tray', 'Resources/korvel-agent', 'Frameworks/libcrypto.3.dylib',
                     'Frameworks/QtCore.framework/Versions/A/QtCore', 'PlugIns/platforms/libqcocoa.dylib',
                     'Frameworks/QtGui.framework/Versions/A/libinner.dylib', 'Helpers/one', 'Helpers/two']:
            (app / 'Contents' / file).parent.mkdir(parents=True, exist_ok=True)
            (app / 'Contents' / file).write_text('')
        self.fake('codesign', '')
        done = self.call('sign', app, KORVEL_SIGN_IDENTITY='Developer ID: Ann')
        self.assertEqual(done.returncode, 0, done.stderr)
        *signed, verified = self.lines()
        for call in signed:
            self.assertTrue(call.startswith('--force --sign Developer ID: Ann --timestamp --options runtime '), call)
        parts = [call.split(f'{app}')[1].removeprefix('/Contents/') for call in signed]
        self.assertEqual([set(parts[:2]), set(parts[2:4]), set(parts[4:7]), parts[7:]],
                         [{'Frameworks/libcrypto.3.dylib', 'PlugIns/platforms/libqcocoa.dylib'},
                          {'Frameworks/QtCore.framework', 'Frameworks/QtGui.framework'},
                          {'Helpers/one', 'Helpers/two', 'Resources/korvel-agent'}, ['']])
        self.assertTrue(verified.startswith('--verify'))
        self.fake('codesign', 'case "$*" in *korvel-agent) exit 1 ;; esac')
        done = self.call('sign', app, KORVEL_AGENT_ENTITLEMENTS='/agent rights.plist')
        self.assertNotEqual(done.returncode, 0)
        self.assertIn('ad hoc', done.stdout)
        self.assertIn('--sign - --timestamp=none --entitlements /agent rights.plist', self.lines()[-1])


class Notarise(WithTools):
    def test_attaches_the_ticket_of_an_accepted_package_only(self):
        package = self.folder / 'a.pkg'
        package.write_text('')
        key = {'KORVEL_NOTARY_KEY': 'k', 'KORVEL_NOTARY_KEY_ID': 'i', 'KORVEL_NOTARY_ISSUER': 'u'}
        submit, log = ['notarytool', 'submit'], ['notarytool', 'log']
        for verdict, account, status, calls in [
                ('Accepted', {'KORVEL_NOTARY_PROFILE': 'ann'}, 0, [submit, ['stapler', 'staple'], ['stapler', 'validate']]),
                ('Invalid', key, 1, [submit, log]), ('Accepted', {'KORVEL_NOTARY_KEY': 'k'}, 64, [])]:
            reply = f'{{"id": "7f-1", "message": "m", "status":"{verdict}"}}'
            self.fake('xcrun', f"case \"$*\" in *submit*) echo '{reply}' ;; esac")
            done = self.call('notarise', package, **account)
            self.assertEqual(done.returncode, status, done.stderr)
            self.assertEqual([call.split()[:2] for call in self.lines()], calls)


def link(contents, architectures=BOTH):
    """The programs and libraries of a bundle."""
    core = f'@rpath/{QT_CORE}'
    for program in ['MacOS/korvel-tray', 'Helpers/korvel-exchange']:
        mach_o(contents / program, architectures=architectures, loads=[core], rpaths=[FRAMEWORKS])
    mach_o(contents / 'Frameworks' / QT_CORE, architectures=architectures, library=core)
    mach_o(contents / PLUGIN, architectures=architectures, library='@rpath/libqcocoa.dylib',
           rpaths=['@loader_path/../../lib'], loads=[core, f'@loader_path/../../Frameworks/{QT_CORE}', f'{FRAMEWORKS}/{QT_CORE}'])
    mach_o(contents / 'Resources/korvel-agent', architectures=architectures)


class WithPackage(WithTools):
    """A package as pkgutil lays it out, for the real template and the real script."""

    def setUp(self):
        super().setUp()
        self.expanded = self.folder / 'expanded'
        self.payload = self.expanded / 'Korvel-tray.pkg/Payload'
        self.contents = self.payload / 'Applications/Korvel.app/Contents'
        self.info = self.expanded / 'Korvel-tray.pkg/PackageInfo'
        self.distribution = self.expanded / 'Distribution'
        self.fake('pkgutil', f'cp -R "{self.expanded}" "$3"')
        self.fake('plutil', '')
        self.fake('codesign', '')
        self.fake('arch', MENU + '*--login-render*) : >"$5" ;; esac')
        for name in ['otool', 'lipo']:
            (self.folder / 'bin' / name).symlink_to(llvm(f'llvm-{name}'))

    def write_distribution(self, architectures):
        """Writes what the installer reads about the package."""
        self.info.write_text('<pkg-info><relocate/></pkg-info>')
        values = {'CPACK_KORVEL_ARCHITECTURES': architectures, 'CPACK_KORVEL_MINIMUM_SYSTEM': '14.0',
                  'CPACK_PACKAGEMAKER_CHOICES': '<choices-outline/>'}
        text = re.sub('@(\\w+)@', lambda match: values.get(match[1], match[1]),
                      (SOURCE / 'packaging/package/CPack.distribution.dist.in').read_text())
        ElementTree.fromstring(text.encode())
        self.distribution.write_text(text)

    def look(self, name):
        package = self.folder / name
        package.write_text('')
        return self.call('inspect', package)


class Inspect(WithPackage):
    @classmethod
    def setUpClass(cls):
        cls.linked = Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.linked)
        link(cls.linked)

    def setUp(self):
        super().setUp()
        self.lay()

    def lay(self):
        shutil.rmtree(self.expanded, ignore_errors=True)
        shutil.copytree(self.linked, self.contents)
        (self.contents / 'Info.plist').write_bytes(
            b'<plist version="1.0"><dict><key>LSMinimumSystemVersion</key><string>14.0</string></dict></plist>')
        self.write_distribution(','.join(BOTH))

    def test_accepts_a_release_and_starts_it_on_each_processor_with_each_platform(self):
        done = self.look(RELEASE)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn('a release, whole, for arm64 and x86_64, macOS 14.0', done.stdout)
        started = {(call.split()[0], Path(call.split()[-1]).name) for call in self.lines() if 'korvel-tray --' in call}
        self.assertEqual(started, {(f'-{one}', what) for one in BOTH
                                   for what in ['--menu-dump', f'cocoa-{one}.png', f'offscreen-{one}.png']})

    def test_refuses_what_users_could_not_install_or_run(self):
        def change(path, old, new):
            self.assertIn(old, path.read_text())
            path.write_text(path.read_text().replace(old, new))

        def thin():
            link(self.contents, ['arm64'])
            self.write_distribution('arm64')
        core, homebrew = f'@rpath/{QT_CORE}', '/opt/homebrew/lib'
        inner, helper = self.contents / 'Frameworks/libinner.dylib', self.contents / 'Helpers/korvel-exchange'
        tray, agent = self.contents / 'MacOS/korvel-tray', self.contents / 'Resources/korvel-agent'
        key = '11qYAYKxCrfVS/7TyWQHOg7hcvPapiMlrwIaaPcHURo='
        of_any = [
            ('alone', lambda: mach_o(inner, architectures=['x86_64'], library='inner')),
            ('needs macOS 15.0', lambda: mach_o(inner, library='inner', minimum='15.0')),
            (f'looks for libraries in {homebrew}', lambda: mach_o(helper, loads=[core], rpaths=[FRAMEWORKS, homebrew])),
            ('needs what users lack: /opt', lambda: mach_o(inner, library='inner', loads=[f'{homebrew}/libz.dylib'])),
            ('not name the processors', lambda: change(self.distribution, 'hostArchitectures', 'host')),
            ('elsewhere', lambda: change(self.distribution, 'enable_anywhere="false"', 'enable_anywhere="true"')),
            ('oldest macOS', lambda: change(self.distribution, 'min="14.0"', 'min="13.0"')),
            ('elsewhere', lambda: change(self.info, '<relocate/>', '<relocate>\n<bundle id="x"/></relocate>')),
            ('platform plugin cocoa', lambda: self.fake('arch', MENU + '*offscreen*) : >"$5" ;; esac')),
            ('exchange does not start', lambda: self.fake('arch', MENU + '*exchange) kill -ABRT $$ ;; esac'))]
        of_a_release = [
            ('one kind of processor', thin), ('no program of macOS', lambda: agent.write_text('#!/bin/sh\n')),
            (f'holds {key}', lambda: tray.write_bytes(tray.read_bytes() + f'192.0.2.10 {key}'.encode('utf-16-le')))]
        for name, reason, spoil in [(RELEASE, *row) for row in of_a_release] + [(TRIAL, *row) for row in of_any]:
            with self.subTest(reason):
                self.lay()
                spoil()
                done = self.look(name)
                self.assertNotEqual(done.returncode, 0)
                self.assertIn(reason, done.stderr)


class Linked(WithPackage):
    """The build for macOS that tests/mac/link makes in the folder LINKED, in the steps of a Mac."""

    def test_is_packed_signed_and_whole(self):
        build = Path(os.environ['LINKED']).resolve()
        (build / 'Korvel.app/Contents/Resources/Korvel.icns').write_text('')  # drawn by a program that cannot run here
        tool = 'llvm-install-name-tool'
        (self.folder / 'bin' / tool).symlink_to(llvm(tool))
        self.ok(Path(CMAKE).with_name('cpack'), '--config', build / 'CPackConfig.cmake', '-G', 'TGZ', '-B', self.folder,
                '-D', 'CPACK_ARCHIVE_COMPONENT_INSTALL=ON', '-D', 'CPACK_COMPONENTS_GROUPING=ALL_COMPONENTS_IN_ONE',
                env=self.environment)
        self.assertTrue({'korvel-agent', 'Korvel.app'} <= {Path(call).name for call in self.lines()}, self.lines())
        (packed,) = self.folder.glob('Korvel-*-trial-cn.tar.gz')
        self.payload.mkdir(parents=True)
        self.ok('tar', '-xzf', packed, '-C', self.payload)
        self.write_distribution('arm64')
        done = self.look(packed.name.replace('.tar.gz', '.pkg'))
        self.assertEqual(done.returncode, 0, done.stderr)


if __name__ == '__main__':
    unittest.main()
