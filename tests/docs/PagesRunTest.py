"""Every step that a page shows does what the page says. Run by ctest, which names the program."""

import os
import pathlib
import re
import signal
import subprocess
import tempfile
import unittest

SOURCES = pathlib.Path(os.environ["HOMELOOM_SOURCE_DIR"])
PROGRAM = pathlib.Path(os.environ["HOMELOOM_TV"])
BLOCK = re.compile(r"^```(\w+) ?(\S*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def pattern(output: str) -> str:
    """What a command's output must match: "..." stands for anything within a line, and alone on one for any lines."""
    lines = [
        r"(.*\n)*?" if line == "..." else re.escape(line).replace(r"\.\.\.", ".*") + r"\n"
        for line in output.splitlines()
    ]
    return "".join(lines)


class PagesRunTest(unittest.TestCase):
    def run_page(self, name: str, address: str = "") -> None:
        """Writes the page's files as they come and runs its commands, with that address for the one in the page."""
        page = (SOURCES / "docs" / name).read_text()
        environment = {
            **os.environ,
            "PATH": f"{PROGRAM.parent}:/usr/bin:/bin",
            "PYTHONPATH": str(SOURCES / "clients/python"),
            "LC_ALL": "C.UTF-8",
        }
        commands = 0
        with tempfile.TemporaryDirectory() as folder:
            for kind, file, text in BLOCK.findall(page):
                if kind != "console":
                    pathlib.Path(folder, file).write_text(text)
                    continue
                line, _, output = text.partition("\n")
                command = line.removeprefix("$ ").replace("http://127.0.0.1:8480/", address)
                result = subprocess.run(
                    command, shell=True, cwd=folder, env=environment, capture_output=True, text=True, check=False
                )
                said = result.stdout + result.stderr
                self.assertRegex(said.rstrip("\n") + "\n", rf"\A{pattern(output)}\Z", command)
                commands += 1
        self.assertGreater(commands, 4)

    def test_first_home(self) -> None:
        self.run_page("first-home.md")

    def test_door(self) -> None:
        with subprocess.Popen(
            [PROGRAM, "--serve", "0"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True
        ) as tv:
            assert tv.stdout is not None
            try:
                self.run_page("door.md", next(line.strip() for line in tv.stdout if line.startswith("http://")))
            finally:
                tv.send_signal(signal.SIGTERM)
                tv.stdout.read()
        self.assertEqual(tv.returncode, 0)


if __name__ == "__main__":
    unittest.main()
