"""Tests of what goes out: the bundle, its package and the job file."""
import os
import plistlib
import re
import shutil
import stat
import struct
import unittest
from pathlib import Path

from support import CMAKE, SOURCE, WithTools, run

# What a release has to be given.
OPERATOR = {'UPDATE_PUBKEY': 'eKxBsing+68IXEJsqtUDzy1sXDOPtetejb3Eq8NNGfg=', 'CN_SERVER': 'relay.korvel.cn:443',
            'INTL_SERVER': 'relay.korvel.com:443', 'INTL_ADDRESS_1': '8.8.8.8:443', 'INTL_ADDRESS_2': '8.8.4.4:443',
            'INTL_ADDRESS_3': '9.9.9.9:8443', 'SITE': 'https://korvel.com'}


class Bundle(WithTools):
    def setUp(self):
        super().setUp()
        self.build = self.folder / 'build'
        self.agent = self.folder / 'agent'
        self.agent.write_text('#!/bin/sh\n')

    def configure(self, *settings):
        """A build that ships, with what the development build has made in place of what it would make."""
        self.ok(CMAKE, '-S', SOURCE, '-B', self.build, '-G', 'Ninja', '-DCMAKE_BUILD_TYPE=Release',
                '-DKORVEL_DEVELOPMENT=OFF', '-DKORVEL_VERSION=3.4.5', f'-DKORVEL_AGENT_PROGRAM={self.agent}', *settings)
        shutil.copytree(os.environ['APP'], self.build / 'Korvel.app', dirs_exist_ok=True,
                        ignore=shutil.ignore_patterns('Info.plist'))

    def pack(self, *settings, refusal=None):
        """Runs cpack, which refuses with this text if there is one; gives its error messages."""
        cpack = Path(CMAKE).with_name('cpack')
        done = run(cpack, '--config', self.build / 'CPackConfig.cmake', '-B', self.folder / 'packages', *settings,
                   cwd=self.build, env=self.environment)
        self.assertEqual(done.returncode == 0, refusal is None, done.stdout + done.stderr)
        self.assertIn(refusal or '', done.stderr)
        return done.stderr

    def test_the_tray_links_nothing_that_talks_to_the_internet(self):
        linked = self.ok('ldd', Path(os.environ['APP']) / 'Contents/MacOS/korvel-tray')
        self.assertIn('libQt6Widgets', linked)
        self.assertNotRegex(linked, 'lib(curl|ssl|crypto|gnutls|Qt6Network)')

    def test_a_trial_holds_what_macos_and_the_tray_look_for(self):
        self.configure('-DKORVEL_EDITION=intl', '-DCMAKE_OSX_DEPLOYMENT_TARGET=15.1')
        named = re.search('example values of (.*?):', self.pack(refusal='example values'), re.DOTALL)[1]
        self.assertEqual({name.strip() for name in named.split(',')}, {f'KORVEL_{name}' for name in OPERATOR})
        self.configure('-DKORVEL_TRIAL=ON')
        self.pack()
        self.ok('tar', '-xzpf', self.folder / 'packages/Korvel-3.4.5-trial.tar.gz', '-C', self.folder)
        app = self.folder / 'Applications/Korvel.app/Contents'
        files = {str(path.relative_to(app)) for path in app.parents[1].rglob('*') if path.is_file()}
        self.assertEqual(files, {'Info.plist', 'MacOS/korvel-tray', 'Helpers/korvel-exchange',
                                 'Resources/Korvel.icns', 'Resources/korvel-agent',
                                 'Resources/en.lproj/InfoPlist.strings', 'Resources/zh-Hans.lproj/InfoPlist.strings'})
        for program in ['MacOS/korvel-tray', 'Helpers/korvel-exchange', 'Resources/korvel-agent']:
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

    def test_a_release_is_signed_and_packed(self):
        self.configure('-DCMAKE_OSX_ARCHITECTURES=x86_64;arm64', *[f'-DKORVEL_{k}={v}' for k, v in OPERATOR.items()])
        self.fake('codesign', '')
        self.pack()
        staged = 'tray/Applications/Korvel.app'
        signed = [call for call in self.lines() if call.startswith('--force') and call.endswith(staged)]
        self.assertEqual(len(signed), 1, self.lines())
        self.assertTrue((self.folder / 'packages/Korvel-3.4.5-cn.tar.gz').is_file())
        self.assertIn('set(CPACK_KORVEL_ARCHITECTURES "arm64,x86_64")', (self.build / 'CPackConfig.cmake').read_text())
        self.pack('-D', 'CPACK_KORVEL_AGENT_PROGRAM=', refusal='needs the agent')
        self.pack('-D', 'CPACK_KORVEL_SIMULATED_ROOT=/x', refusal='simulated')
        self.pack('-D', 'CPACK_KORVEL_ARCHITECTURES=arm64', refusal='not for arm64 alone')
        self.fake('codesign', 'exit 1')
        self.pack(refusal='')

    def test_deployment_data_of_another_form_is_refused(self):
        key = OPERATOR['UPDATE_PUBKEY']
        for name, value in [('EDITION', 'eu'), ('UPDATE_PUBKEY', key[:-1]), ('UPDATE_PUBKEY', key[:-2] + 'h='),
                            ('UPDATE_PUBKEY', '*' + key[1:]), ('SITE', 'http://a.cn'), ('CN_SERVER', 'Relay.cn:443'),
                            ('INTL_ADDRESS_3', '9.9.9.9'), ('INTL_SERVER', 'https://a:443')]:
            done = run(CMAKE, f'-DKORVEL_{name}={value}', '-P', SOURCE / 'cmake/deployment.cmake')
            self.assertIn(f'KORVEL_{name} is ', done.stderr)

    def test_holds_qt_only_when_all_of_it_was_found(self):
        helpers = self.folder / 'Korvel.app/Contents/Helpers'
        helpers.mkdir(parents=True)
        (helpers / 'one').write_text('')
        for script, good in [('echo "WARNING: no" >&2', True), ('exit 1', False),
                             ('printf "one\nERROR: Cannot resolve rpath @rpath/libx.dylib\n" >&2', False)]:
            self.fake('macdeployqt', script)
            done = run(CMAKE, f'-DMACDEPLOYQT={self.folder}/bin/macdeployqt', f'-DAPP={self.folder}/Korvel.app', '-P',
                       SOURCE / 'packaging/package/deploy_qt.cmake')
            self.assertEqual(done.returncode == 0, good, done.stderr)
        self.assertIn(f'-executable={helpers}/one', self.lines()[0])


class Files(WithTools):
    def test_icon_holds_a_picture_of_each_size(self):
        icns = (Path(os.environ['APP']) / 'Contents/Resources/Korvel.icns').read_bytes()
        self.assertEqual(struct.unpack('>4sI', icns[:8]), (b'icns', len(icns)))
        sides, at = {}, 8
        while at < len(icns):
            kind, length, magic, width, height = struct.unpack('>4sI8s8x2I', icns[at:at + 32])
            self.assertEqual((magic, width), (b'\x89PNG\r\n\x1a\n', height))
            sides[kind] = width
            at += length
        self.assertEqual(sides, {b'ic11': 32, b'ic12': 64, b'ic07': 128, b'ic13': 256, b'ic08': 256, b'ic14': 512,
                                 b'ic09': 512, b'ic10': 1024})

    def test_package_leaves_other_instances_alone(self):
        (component,) = plistlib.loads((SOURCE / 'packaging/package/component.plist').read_bytes())
        self.assertEqual(component['RootRelativeBundlePath'], 'Applications/Korvel.app')
        self.assertIs(component['BundleIsRelocatable'], False)
        self.ok('sh', '-n', SOURCE / 'packaging/package/postinstall')


if __name__ == '__main__':
    unittest.main()
