"""Fixtures for test suites of handsets: commands of vxk with their verdicts, on a simulated handset or on a real one.

    def test_eid(handset):
        assert handset.values(5, 10, 3, 0)["eid"].startswith("89")
"""
import json
import subprocess

import pytest


class Handset:
    """A handset that commands are run on; `word` is what vxk-check --handset takes."""

    def __init__(self, word):
        self.word = word

    def check(self, *words, expect=None, verify=False, timeout=10):
        """Runs a command and returns the object that vxk-check prints."""
        options = ["--json", "--handset", str(self.word), "--timeout", str(timeout)]
        options += ["--expect", expect] if expect else []
        options += ["--verify"] if verify else []
        command = ["vxk-check", *options, "--", *map(str, words)]
        return json.loads(subprocess.run(command, stdout=subprocess.PIPE, text=True).stdout)

    def values(self, *words, **rules):
        """Runs a command that must succeed and returns the values of its answer."""
        result = self.check(*words, **rules)
        assert result["verdict"] == "success", f"vxk {' '.join(result['command'])}: {result['reason']}"
        return result["values"]


def pytest_addoption(parser):
    parser.addoption("--handset", help="adb serial, or what else vxk-check --handset takes; else a simulated one for each test")


def pytest_configure(config):
    config.addinivalue_line("markers", "profile(keys): what kind of simulated handset the test needs")


@pytest.fixture
def handset(request, tmp_path):
    """The handset of --handset; without it a simulated one, fresh for each test."""
    if word := request.config.getoption("--handset"):
        yield Handset(word)
        return
    mark = request.node.get_closest_marker("profile")
    profile, folder = tmp_path / "profile.json", tmp_path / "handset"
    profile.write_text(json.dumps(mark.args[0] if mark else {}))
    command = ["vxk-handset", "serve", "--dir", folder, "--profile", profile]
    with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as process:
        try:
            assert process.stdout.readline(), "the handset did not start"
            yield Handset(f"folder:{folder}")
        finally:
            process.terminate()
