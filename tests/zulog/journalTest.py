"""Ships a log to a socket that takes what the journal takes: journalTest.py <zulog>."""

import array
import os
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import unittest

ZULOG = os.path.abspath(sys.argv.pop(1))
ORIGIN = ("===== Clock Origin: 0000000000 0000000000 is 2026-11-22T10:00:00.000000000Z, 1000000 "
          "ticks per second, process 4711 started 2026-11-22T09:59:59.000000000Z, host alpha, "
          "boot 3f2b =====\n")


# The fields of an entry of the journal's native protocol.
def fields_of(entry):
    fields = {}
    while entry:
        line, _, rest = entry.partition(b"\n")
        name, is_short, value = line.partition(b"=")
        if is_short:
            entry = rest
        else:
            length = struct.unpack("<Q", rest[:8])[0]
            value = rest[8:8 + length]
            assert rest[8 + length:9 + length] == b"\n"
            entry = rest[9 + length:]
        fields[name.decode()] = value
    return fields


class Journal(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.mkdtemp(prefix="zuTest")
        self.path = os.path.join(self.directory, "socket")
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.socket.bind(self.path)
        self.socket.settimeout(60)

    def tearDown(self):
        self.socket.close()
        shutil.rmtree(self.directory)

    def ship(self, text):
        log = os.path.join(self.directory, "shop.log")
        with open(log, "w", encoding="utf-8") as file:
            file.write(text)
        return subprocess.run([ZULOG, "ship", "--once", "--to", "journal:" + self.path, "--cursor",
                               os.path.join(self.directory, "cursor"), "--no-marks", log],
                              check=False, stderr=subprocess.PIPE, text=True)

    def receive(self):
        descriptors = array.array("i")
        data, ancillary, _, _ = self.socket.recvmsg(1 << 20, socket.CMSG_LEN(descriptors.itemsize))
        for _, _, value in ancillary:
            descriptors.frombytes(value)
        if descriptors:
            with os.fdopen(descriptors[0], "rb") as file:
                file.seek(0)
                return file.read()
        return data

    def test_an_entry_has_what_the_record_has(self):
        result = self.ship(ORIGIN + "0000000000 0000000007 (0x00000abc) Error: Orders one\n\ttwo\n")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        fields = fields_of(self.receive())
        file = fields.pop("ZULOG_FILE")
        self.assertEqual(os.path.basename(file), b"shop.log")
        self.assertEqual(fields, {
            "MESSAGE": b"one\ntwo", "PRIORITY": b"3", "SYSLOG_IDENTIFIER": b"shop",
            "ZULOG_TIME": b"2026-11-22T10:00:00.000007Z", "ZULOG_HOST": b"alpha",
            "ZULOG_PROCESS": b"4711", "ZULOG_THREAD": b"2748", "ZULOG_LEVEL": b"Error",
            "ZULOG_GROUP": b"Orders", "ZULOG_KIND": b"event", "ZULOG_LINE": b"2"})

    def test_a_large_entry_comes_as_a_file(self):
        text = "x" * 900000
        result = self.ship(ORIGIN + f"0000000000 0000000007 (0x00000abc) Error: Orders {text}\n")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual(fields_of(self.receive())["MESSAGE"], text.encode())

    def test_a_socket_that_is_missing_is_reported(self):
        os.remove(self.path)
        result = self.ship(ORIGIN + "0000000000 0000000007 (0x00000abc) Error: Orders one\n")
        self.assertEqual(result.returncode, 1)
        self.assertIn("No such file or directory; this is tried again", result.stderr)


unittest.main()
