"""The session of docs/gnmi.md: its commands are run, and what they print is compared, whole."""
import os
import subprocess
import sys
import unittest

DOCUMENT, CLIENTS = sys.argv[3:5]
del sys.argv[3:5]

from client import LONGEST, Server, main  # takes the first two words


def blocks():
    inside = False
    with open(DOCUMENT, encoding="utf-8") as document:
        for line in document:
            if line.startswith("```"):
                inside = line == "```console\n"
            elif inside:
                yield line


class Session(unittest.TestCase):
    maxDiff = None

    def test_as_typed(self):
        server = Server()
        environment = dict(os.environ, PATH=CLIENTS + ":" + os.environ["PATH"])
        printed = ""
        expected = "".join(blocks())
        for line in expected.splitlines():
            if line.startswith("$ "):
                command = line[2:].replace("127.0.0.1:9339", server.address)
                result = subprocess.run(["bash", "-c", command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                        text=True, env=environment, timeout=LONGEST, check=False)
                printed += line + "\n" + result.stdout
        self.assertIn("$ ", expected)
        self.assertEqual(printed, expected)
        self.assertEqual(server.close(), 0)


main()
