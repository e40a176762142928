"""Ships logs to a real rsyslog, while either side is killed:
shipTest.py <zulog> [<senders> <lines>].

Exit value 77, with a reason, where there is no rsyslog."""

import os
import random
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

SENDERS = int(sys.argv.pop(2)) if len(sys.argv) > 3 and sys.argv[2].isdigit() else 3
LINES = int(sys.argv.pop(2)) if len(sys.argv) > 2 and sys.argv[2].isdigit() else 4000
ZULOG = os.path.abspath(sys.argv.pop(1))
RSYSLOG = shutil.which("rsyslogd") or "/usr/sbin/rsyslogd"
MODULE = "/usr/lib/x86_64-linux-gnu/rsyslog/imrelp.so"
PATIENCE = 240
# What one delivery has at most: so many lines may arrive twice after a kill.
BATCH = 1000
BANNER = ("===== Message Logger Startup =====\n"
          "===== Clock Origin: 0000000000 0000000000 is 2026-11-22T10:00:00.000000000Z, 1000000 "
          "ticks per second, process 4711 started 2026-11-22T09:59:59.000000000Z, host alpha, "
          "boot 3f2b =====\n")


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def is_open(port):
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise AssertionError("waited in vain until " + what)
        time.sleep(0.02)


class Receiver:
    """rsyslog with one input, which writes all messages to one file."""

    def __init__(self, directory, module):
        self.port = free_port()
        self.file = os.path.join(directory, "received")
        self.config = os.path.join(directory, "rsyslog.conf")
        inputs = {"imrelp": f'module(load="imrelp")\ninput(type="imrelp" port="{self.port}" '
                            f'address="127.0.0.1" maxdatasize="64k")\n',
                  "imtcp": f'module(load="imtcp")\ninput(type="imtcp" port="{self.port}" '
                           f'address="127.0.0.1")\n'}
        with open(self.config, "w", encoding="ascii") as file:
            file.write(f'global(workDirectory="{directory}" maxMessageSize="64k")\n'
                       + inputs[module] +
                       'template(name="all" type="string" string="%timestamp:::date-rfc3339%|'
                       '%hostname%|%app-name%|%procid%|%msgid%|%syslogseverity%|'
                       '%structured-data%|%msg%\\n")\n'
                       # Written before it is acknowledged.
                       'main_queue(queue.type="Direct")\n'
                       f'action(type="omfile" file="{self.file}" template="all" '
                       'asyncWriting="off" flushOnTXEnd="on")\n')
        self.process = None

    def start(self):
        self.process = subprocess.Popen(
            [RSYSLOG, "-n", "-f", self.config, "-i", self.config + ".pid"],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until(lambda: is_open(self.port), "rsyslog listens")

    def kill(self):
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()
        if os.path.exists(self.config + ".pid"):
            os.remove(self.config + ".pid")

    def lines(self):
        if not os.path.exists(self.file):
            return []
        with open(self.file, encoding="utf-8") as file:
            return file.read().splitlines()


class Ship(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.mkdtemp(prefix="zuTest")
        self.logs = [os.path.join(self.directory, f"sender{i}.log") for i in range(SENDERS)]
        self.random = random.Random(20261123)
        self.receiver = None

    def tearDown(self):
        if self.receiver and self.receiver.process.poll() is None:
            self.receiver.kill()
        shutil.rmtree(self.directory)

    def receive(self, module):
        self.receiver = Receiver(self.directory, module)
        self.receiver.start()
        scheme = "relp" if module == "imrelp" else "tcp"
        return f"{scheme}://127.0.0.1:{self.receiver.port}"

    def command(self, sender, destination, *more):
        return [ZULOG, "ship", "--to", destination, "--cursor", self.logs[sender] + ".cursor",
                *more, self.logs[sender]]

    @staticmethod
    def write_line(file, sender, number):
        file.write(f"0000000000 {number:010d} (0x00000abc) Warning: Orders sender {sender} line "
                   f"{number} end\n")

    def write_logs(self, lines=LINES):
        for sender, log in enumerate(self.logs):
            with open(log, "w", encoding="ascii") as file:
                file.write(BANNER)
                for number in range(lines):
                    self.write_line(file, sender, number)

    def counts(self):
        counts = {}
        for line in self.receiver.lines():
            found = re.search(r"sender (\d+) line (\d+) end$", line)
            if found:
                key = (int(found[1]), int(found[2]))
                counts[key] = counts.get(key, 0) + 1
        return counts

    def is_whole(self, lines=LINES):
        return len(self.counts()) == SENDERS * lines

    def expect_whole(self, kills, lines=LINES):
        counts = self.counts()
        missing = [(sender, number) for sender in range(SENDERS) for number in range(lines)
                   if (sender, number) not in counts]
        self.assertEqual(missing, [])
        doubled = sum(counts.values()) - len(counts)
        self.assertLessEqual(doubled, kills * BATCH)
        return doubled

    def ship_once(self, destination):
        for sender in range(SENDERS):
            result = subprocess.run(self.command(sender, destination, "--once"), check=False,
                                    stderr=subprocess.PIPE, text=True)
            self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_relp_delivers_each_line_once(self):
        self.write_logs()
        begin = time.monotonic()
        destination = self.receive("imrelp")
        self.ship_once(destination)
        print(f"{SENDERS * LINES / (time.monotonic() - begin):.0f} lines/s by RELP")
        self.assertEqual(self.expect_whole(0), 0)
        # The cursors say that nothing is left.
        self.ship_once(destination)
        self.assertEqual(self.expect_whole(0), 0)

    def test_a_message_has_what_the_record_has(self):
        self.write_logs(1)
        self.ship_once(self.receive("imrelp"))
        line = next(line for line in self.receiver.lines() if "sender 0 line 0 end" in line)
        self.assertIn("2026-11-22T10:00:00", line)
        fields = line.split("|")
        self.assertEqual(fields[1:6], ["alpha", "sender0", "4711", "Orders", "4"])
        self.assertIn('thread="0x00000abc" level="Warning" group="Orders"', fields[6])
        self.assertEqual(fields[7].strip(), "sender 0 line 0 end")

    def test_tcp_delivers_each_line_once(self):
        self.write_logs()
        begin = time.monotonic()
        self.ship_once(self.receive("imtcp"))
        wait_until(self.is_whole, "all lines are there")
        print(f"{SENDERS * LINES / (time.monotonic() - begin):.0f} lines/s over TCP")
        self.assertEqual(self.expect_whole(0), 0)

    def test_lines_that_come_while_it_runs_arrive(self):
        self.write_logs(10)
        destination = self.receive("imrelp")
        shippers = [subprocess.Popen(self.command(sender, destination), stderr=subprocess.PIPE)
                    for sender in range(SENDERS)]
        try:
            wait_until(lambda: self.is_whole(10), "the first lines are there")
            for sender, log in enumerate(self.logs):
                # A rotation in between.
                os.rename(log, log + ".1")
                with open(log, "w", encoding="ascii") as file:
                    file.write(BANNER)
                    for number in range(10, 20):
                        self.write_line(file, sender, number)
            wait_until(lambda: self.is_whole(20), "the other lines are there")
        finally:
            for shipper in shippers:
                shipper.kill()
                shipper.communicate()
        self.assertEqual(self.expect_whole(0, 20), 0)

    def test_nothing_is_lost_when_either_side_is_killed(self):
        self.write_logs()
        destination = self.receive("imrelp")
        is_over = threading.Event()
        kills = [0] * SENDERS
        codes = []
        # In which a shipper would send a part of its log.
        life = min(0.3, LINES / 200000)

        def ship(sender):
            chance = random.Random(sender)
            while True:
                shipper = subprocess.Popen(self.command(sender, destination, "--once"),
                                           stderr=subprocess.DEVNULL)
                try:
                    shipper.wait(0.01 + chance.random() * life if kills[sender] < 5 else PATIENCE)
                except subprocess.TimeoutExpired:
                    shipper.kill()
                    kills[sender] += 1
                if shipper.wait() == 0:
                    break
            codes.append(sender)

        threads = [threading.Thread(target=ship, args=(sender,)) for sender in range(SENDERS)]
        for thread in threads:
            thread.start()

        receiver_kills = 0
        while any(thread.is_alive() for thread in threads):
            is_over.wait(life * (1 + self.random.random()))
            if receiver_kills < 5:
                self.receiver.kill()
                self.receiver.start()
                receiver_kills += 1
        for thread in threads:
            thread.join()
        doubled = self.expect_whole(sum(kills) + receiver_kills * SENDERS)
        self.assertTrue(all(kills))
        self.assertGreater(receiver_kills, 0)
        print(f"{sum(kills)} kills of shippers, {receiver_kills} of the receiver: "
              f"{doubled} lines twice")

    def test_a_receiver_that_is_missing_is_reported(self):
        self.write_logs(1)
        for kind in ("tcp", "relp"):
            destination = f"{kind}://127.0.0.1:{free_port()}"
            result = subprocess.run(self.command(0, destination, "--once"), check=False,
                                    stderr=subprocess.PIPE, text=True)
            self.assertEqual(result.returncode, 1)
            lines = result.stderr.splitlines()
            self.assertEqual(len(lines), 2, lines)
            self.assertEqual(f"zulog: {destination}: Connection refused; this is tried again",
                             lines[0])
            self.assertIn("fails; the rest can be shipped later", lines[1])


if not os.path.exists(RSYSLOG) or not os.path.exists(MODULE):
    print("skipped: rsyslog with RELP is not installed (packages rsyslog and rsyslog-relp)")
    sys.exit(77)
unittest.main()
