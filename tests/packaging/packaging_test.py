"""Tests of what goes out. Where things lie comes from the environment: SOURCE, CMAKE, APP, JOB_FILE, PUBLISH."""
import os
import plistlib
import re
import shutil
import stat
import struct
import subprocess
import tempfile
import unittest
from pathlib import Path

SOURCE = Path(os.environ['SOURCE'])


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


class Bundle(InFolder):
    def configure(self, *settings):
        """A build that ships, with what the development build has made in place of what it would make."""
        build = self.folder / 'build'
        output = self.ok(os.environ['CMAKE'], '-S', SOURCE, '-B', build, '-G', 'Ninja', '-DCMAKE_BUILD_TYPE=Release',
                         '-DKORVEL_DEVELOPMENT=OFF', '-DKORVEL_VERSION=3.4.5', *settings)
        for made in ['Contents/MacOS/korvel-tray', 'Contents/PlugIns/korvel-internet.so',
                     'Contents/Resources/Korvel.icns']:
            (build / 'Korvel.app' / made).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(Path(os.environ['APP']) / made, build / 'Korvel.app' / made)
        return build, output

    def test_holds_what_macos_and_the_tray_look_for(self):
        agent = self.folder / 'agent'
        agent.write_text('#!/bin/sh\n')
        build, _ = self.configure(f'-DKORVEL_AGENT_PROGRAM={agent}', '-DCMAKE_OSX_DEPLOYMENT_TARGET=15.1')
        self.ok(os.environ['CMAKE'], '--install', build, '--prefix', self.folder / 'to')
        app = self.folder / 'to' / 'Korvel.app' / 'Contents'
        files = {str(p.relative_to(app)) for p in app.rglob('*') if p.is_file()}
        self.assertEqual(files, {'Info.plist', 'MacOS/korvel-tray', 'PlugIns/korvel-internet.so',
                                 'Resources/Korvel.icns', 'Resources/korvel-agent',
                                 'Resources/en.lproj/InfoPlist.strings', 'Resources/zh-Hans.lproj/InfoPlist.strings'})
        self.assertEqual([p.name for p in (self.folder / 'to').iterdir()], ['Korvel.app'])
        for program in ['MacOS/korvel-tray', 'Resources/korvel-agent']:
            self.assertEqual(stat.S_IMODE((app / program).stat().st_mode), 0o755, program)
        info = plistlib.loads((app / 'Info.plist').read_bytes())
        for key, value in {'CFBundleIdentifier': 'dev.korvel.tray', 'LSUIElement': True, 'NSHighResolutionCapable': True,
                           'CFBundleShortVersionString': '3.4.5', 'CFBundleVersion': '3.4.5',
                           'LSMinimumSystemVersion': '15.1'}.items():
            self.assertEqual(info[key], value, key)
        self.assertTrue((app / 'MacOS' / info['CFBundleExecutable']).is_file())
        self.assertTrue((app / 'Resources' / (info['CFBundleIconFile'] + '.icns')).is_file())
        usage = {key: text for key, text in info.items() if key.endswith('UsageDescription')}
        self.assertIn('NSLocalNetworkUsageDescription', usage)
        for language in info['CFBundleLocalizations']:
            strings = (app / 'Resources' / f'{language}.lproj' / 'InfoPlist.strings').read_text('utf-8')
            pairs = dict(re.findall(r'^"(\w+)" = "([^"\\]+)";$', strings, re.MULTILINE))
            self.assertEqual(len(pairs), len(strings.splitlines()), strings)
            self.assertEqual(pairs.keys(), usage.keys(), language)
            self.assertEqual(pairs == usage, language == info['CFBundleDevelopmentRegion'])

    def test_is_packed_only_as_what_ships(self):
        agent = self.folder / 'agent'
        agent.write_text('#!/bin/sh\n')
        cpack = Path(os.environ['CMAKE']).with_name('cpack')
        for settings, refusal in [((f'-DKORVEL_AGENT_PROGRAM={agent}', '-DKORVEL_EDITION=cn'), None),
                                  (('-DKORVEL_AGENT_PROGRAM=',), 'needs the agent'),
                                  ((f'-DKORVEL_AGENT_PROGRAM={agent}', '-DKORVEL_STAND_IN_ROOT=/x'), 'stand-ins')]:
            build, _ = self.configure(*settings)
            done = run(cpack, '--config', build / 'CPackConfig.cmake', '-B', self.folder / 'packages', cwd=build)
            if refusal:
                self.assertNotEqual(done.returncode, 0)
                self.assertIn(refusal, done.stderr)
            else:
                self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
                package = self.folder / 'packages' / 'Korvel-3.4.5-cn.tar.gz'
                self.assertIn('Korvel.app/Contents/Resources/korvel-agent', self.ok('tar', '-tzf', package))

    def test_icon_holds_a_picture_of_each_size_that_its_type_means(self):
        icns = (Path(os.environ['APP']) / 'Contents/Resources/Korvel.icns').read_bytes()
        self.assertEqual(struct.unpack('>4sI', icns[:8]), (b'icns', len(icns)))
        sizes, at = {}, 8
        while at < len(icns):
            kind, length = struct.unpack('>4sI', icns[at:at + 8])
            png = icns[at + 8:at + length]
            self.assertEqual(png[:8], b'\x89PNG\r\n\x1a\n')
            self.assertEqual(png[-8:-4], b'IEND')
            sizes[kind.decode()] = struct.unpack('>II', png[16:24])
            at += length
        self.assertEqual(at, len(icns))
        sides = {'ic11': 32, 'ic12': 64, 'ic07': 128, 'ic13': 256, 'ic08': 256, 'ic14': 512, 'ic09': 512, 'ic10': 1024}
        self.assertEqual(sizes, {kind: (side, side) for kind, side in sides.items()})

    def test_package_leaves_other_copies_alone(self):
        (component,) = plistlib.loads((SOURCE / 'packaging/package/component.plist').read_bytes())
        self.assertEqual(component['RootRelativeBundlePath'], 'Applications/Korvel.app')
        self.assertIs(component['BundleIsRelocatable'], False)
        self.ok('sh', '-n', SOURCE / 'packaging/package/postinstall')


class JobFile(InFolder):
    def test_is_a_property_list_whatever_the_paths(self):
        for program, log in [('/Applications/Korvel.app/Contents/MacOS/korvel-tray', '/Users/ann/Library/Logs/a.log'),
                             ('/Applications/A & B <"C">\'.app/x', '/Users/安/&amp;/]]>.log')]:
            job = plistlib.loads(self.ok(os.environ['JOB_FILE'], program, log).encode())
            self.assertEqual(job, {'Label': 'com.korvel.tray', 'ProgramArguments': [program], 'RunAtLoad': True,
                                   'StandardErrorPath': log})


class PackageName(InFolder):
    def test_tells_the_tray_its_edition(self):
        key = self.folder / 'key'
        self.ok(os.environ['PUBLISH'], 'make-key', key)
        for edition in ['cn', 'intl']:
            name = self.ok(os.environ['CMAKE'], '-DKORVEL_VERSION=1.20.3', f'-DKORVEL_EDITION={edition}', '-P',
                           SOURCE / 'packaging/package/name.cmake').strip()
            package = self.folder / f'{name}.pkg'
            package.write_text('content')
            said = self.ok(os.environ['PUBLISH'], 'sign', '--key', key, '--version', '1.20.3', '--manifest',
                           self.folder / 'manifest', package)
            self.assertIn(f' {edition} {package.name} ', said)


class Scripts(InFolder):
    def setUp(self):
        super().setUp()
        self.calls = self.folder / 'calls'
        self.environment = {'PATH': f'{self.folder / "bin"}:/usr/bin:/bin'}
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


class Sign(Scripts):
    def setUp(self):
        super().setUp()
        self.app = self.folder / 'Kor vel.app'
        for file in ['Info.plist', 'MacOS/korvel-tray', 'Resources/korvel-agent', 'Frameworks/libcrypto.3.dylib',
                     'Frameworks/QtCore.framework/Versions/A/QtCore', 'PlugIns/platforms/libqcocoa.dylib',
                     'Frameworks/QtGui.framework/Versions/A/libinner.dylib']:
            (self.app / 'Contents' / file).parent.mkdir(parents=True, exist_ok=True)
            (self.app / 'Contents' / file).write_text('')

    def test_signs_everything_from_the_inside_out(self):
        self.fake('codesign', '')
        done = self.call('sign', self.app, KORVEL_SIGN_IDENTITY='Developer ID: Ann')
        self.assertEqual(done.returncode, 0, done.stderr)
        *signed, last, verified = self.lines()
        for call in [*signed, last]:
            self.assertTrue(call.startswith('--force --sign Developer ID: Ann --timestamp --options runtime '), call)
        contents = f'{self.app}/Contents/'
        parts = {call.split(contents)[1] for call in signed}
        self.assertEqual(parts, {'Frameworks/libcrypto.3.dylib', 'PlugIns/platforms/libqcocoa.dylib',
                                 'Frameworks/QtCore.framework', 'Frameworks/QtGui.framework', 'Resources/korvel-agent'})
        self.assertTrue(last.endswith(str(self.app)))
        self.assertTrue(verified.startswith('--verify'))

    def test_without_an_identity_it_says_that_it_signs_ad_hoc(self):
        self.fake('codesign', '')
        done = self.call('sign', self.app, KORVEL_AGENT_ENTITLEMENTS='/some/agent rights.plist')
        self.assertIn('ad hoc', done.stdout)
        self.assertTrue(self.lines()[0].startswith('--force --sign - --timestamp=none '))
        (agent,) = [call for call in self.lines() if call.endswith('korvel-agent')]
        self.assertIn('--entitlements /some/agent rights.plist ', agent)

    def test_stops_at_the_first_refusal(self):
        self.fake('codesign', 'case "$*" in *korvel-agent) exit 1 ;; esac')
        self.assertNotEqual(self.call('sign', self.app).returncode, 0)
        self.assertTrue(self.lines()[-1].endswith('korvel-agent'))
        self.assertNotEqual(self.call('sign', self.folder).returncode, 0)


class Notarise(Scripts):
    def setUp(self):
        super().setUp()
        self.package = self.folder / 'a.pkg'
        self.package.write_text('')

    def answer(self, status):
        self.fake('xcrun', f'case "$*" in *submit*) echo \'{{"id": "7f-1", "message": "m", "status":"{status}"}}\' ;; esac')

    def test_attaches_the_ticket_of_an_accepted_package_only(self):
        self.answer('Accepted')
        self.assertEqual(self.call('notarise', self.package, KORVEL_NOTARY_PROFILE='ann').returncode, 0)
        self.assertEqual([call.split()[:2] for call in self.lines()],
                         [['notarytool', 'submit'], ['stapler', 'staple'], ['stapler', 'validate']])
        self.assertIn('--keychain-profile ann --wait', self.lines()[0])
        self.answer('Invalid')
        done = self.call('notarise', self.package, KORVEL_NOTARY_KEY='k', KORVEL_NOTARY_KEY_ID='i', KORVEL_NOTARY_ISSUER='u')
        self.assertEqual(done.returncode, 1)
        self.assertIn('Invalid', done.stderr)
        self.assertEqual([call.split()[:3] for call in self.lines()][1:], [['notarytool', 'log', '7f-1']])

    def test_needs_an_account(self):
        self.answer('Accepted')
        self.assertEqual(self.call('notarise', self.package, KORVEL_NOTARY_KEY='k').returncode, 64)
        self.assertEqual(self.lines(), [])


class Workflows(unittest.TestCase):
    COMMAND = re.compile(r'(?:^|&& )\s*((?:\./|scripts/|packaging/|\.ci/)[\w/-]+)', re.MULTILINE)

    def test_run_what_exists_with_pinned_actions_and_no_rights(self):
        import yaml
        found = set()
        for name in ['linux', 'macos']:
            workflow = yaml.safe_load((SOURCE / f'.github/workflows/{name}.yml').read_text())
            self.assertEqual(workflow['permissions'], {'contents': 'read'})
            for job in workflow['jobs'].values():
                self.assertIn('timeout-minutes', job)
                for row in job['strategy']['matrix']['include']:
                    found |= set(self.COMMAND.findall(row.get('command', '')))
                for step in job['steps']:
                    found |= set(self.COMMAND.findall(step.get('run', '')))
                    if 'uses' in step:
                        self.assertRegex(step['uses'], r'^[\w-]+/[\w-]+@v\d+\.\d+\.\d+$')
        self.assertGreaterEqual(found, {'./test', '.ci/format', 'scripts/build', 'scripts/setup', 'packaging/inspect'})
        for command in found:
            self.assertTrue(os.access(SOURCE / command, os.X_OK), command)


if __name__ == '__main__':
    unittest.main()
