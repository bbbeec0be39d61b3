#!/usr/bin/python3
"""ostrel-bench serve as other programs see it: serve_test.py PROGRAM

python-can is the client, the one that Debian packages; it lives in the system's own Python.
"""
import json
import random
import re
import signal
import socket
import struct
import subprocess
import sys
import time
import unittest

import can

PROGRAM = sys.argv[1]
NODE = 5


class Served(unittest.TestCase):
    def setUp(self):
        self.server = subprocess.Popen(
            [PROGRAM, "serve", "--device", str(NODE), "--listen", "127.0.0.1:0"],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        first = self.server.stdout.readline()
        self.port = int(re.fullmatch(r"listening on 127\.0\.0\.1:(\d+)\n", first)[1])

    def tearDown(self):
        self.server.kill()
        self.server.communicate()

    def stop(self):
        self.server.send_signal(signal.SIGINT)
        output, errors = self.server.communicate(timeout=10)
        return self.server.returncode, output, errors

    def bus(self, channel="can1"):
        return can.Bus(interface="socketcand", host="127.0.0.1", port=self.port, channel=channel)

    def send(self, bus, identifier, data):
        bus.send(can.Message(arbitration_id=identifier, data=data, is_extended_id=False))

    def receive(self, bus, identifier, seconds=5):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            message = bus.recv(0.2)
            if message is not None and message.arbitration_id == identifier:
                return bytes(message.data)
        self.fail(f"no frame {identifier:X} within {seconds} s")

    def upload(self, bus, index, sub):
        self.send(bus, 0x600 + NODE, struct.pack("<BHBI", 0x40, index, sub, 0))
        return self.receive(bus, 0x580 + NODE)

    def test_a_device_is_started_configured_and_read(self):
        bus = self.bus()
        self.send(bus, 0x600 + NODE, struct.pack("<BHBHH", 0x2B, 0x1017, 0, 50, 0))
        self.assertEqual(self.receive(bus, 0x580 + NODE)[:4], b"\x60\x17\x10\x00")
        self.send(bus, 0x000, [1, NODE])
        end = time.monotonic() + 5
        while self.receive(bus, 0x700 + NODE) != b"\x05":  # operational
            self.assertLess(time.monotonic(), end)
        answer = self.upload(bus, 0x1000, 0)
        self.assertEqual(answer[:4], b"\x43\x00\x10\x00")
        self.assertEqual(struct.unpack("<I", answer[4:])[0] & 0xFFFF, 401)
        self.assertEqual(self.upload(bus, 0x1017, 0), b"\x4b\x17\x10\x00\x32\x00\x00\x00")
        bus.shutdown()

    def test_garbage_from_a_hundred_clients_does_no_harm(self):
        bus = self.bus("can1")
        self.send(bus, 0x600 + NODE, struct.pack("<BHBHH", 0x2B, 0x1017, 0, 20, 0))
        chance = random.Random(1)
        clients = [socket.create_connection(("127.0.0.1", self.port)) for _ in range(100)]
        for client in clients:
            client.sendall(chance.choice([
                b"", b"< open can", b"< open can1 >< rawmode >< send 123", b"\n\r<<<<>>>>", bytes(5000),
                b"< open can1 >< rawmode >< send 7FFFFFFFF 99 -1 >", b"< open %s >" % (b"x" * 100),
                bytes(chance.randrange(256) for _ in range(3000))]))
        for number, client in enumerate(clients):
            if number % 3 == 0:  # the connection is reset instead of closed
                client.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
            client.close()
        self.assertIn(self.receive(bus, 0x700 + NODE), (b"\x7f", b"\x05"))
        self.assertEqual(self.upload(bus, 0x1000, 0)[:4], b"\x43\x00\x10\x00")
        bus.shutdown()
        status, output, errors = self.stop()
        self.assertEqual(status, 0)
        self.assertRegex(output, r"^client 127\.0\.0\.1:\d+ opens can1\n")
        for line in errors.splitlines():
            self.assertRegex(line, r"^ostrel-bench: client .* was cut off: ")

    def test_scan_lists_the_node_over_a_second_connection(self):
        bus = self.bus()
        self.send(bus, 0x600 + NODE, struct.pack("<BHBHH", 0x2B, 0x1017, 0, 50, 0))
        scan = subprocess.run(
            [PROGRAM, "scan", "--can", f"1=socketcand:127.0.0.1:{self.port}/can1", "--for", "1", "--json"],
            capture_output=True, text=True, timeout=60)
        bus.shutdown()
        self.assertEqual((scan.returncode, scan.stderr), (0, ""))
        self.assertEqual([node["id"] for node in json.loads(scan.stdout)["nodes"]], [NODE])

    def test_bad_input_is_named_in_one_line(self):
        for arguments, named in [
                (["--listen", f"127.0.0.1:{self.port}"], f"cannot listen on 127.0.0.1:{self.port}: "),
                (["--listen", "127.0.0.1:x"], "--listen 127.0.0.1:x: "),
                (["--listen", "no host"], "cannot listen on no host:29536: "),
                (["--can", "1=replay:none.log"], "none.log: no such file"),
                (["--can", "1=replay:none.log,speed=max"], "leave out speed=max"),
                (["--device", "0"], 'device "0"'),
                (["--for", "0"], "--for 0"),
                (["first.seq"], "first.seq")]:
            if "--listen" not in arguments:
                arguments += ["--listen", "127.0.0.1:0"]
            server = subprocess.run([PROGRAM, "serve", *arguments], capture_output=True, text=True, timeout=30)
            self.assertEqual((server.returncode, server.stdout, server.stderr.count("\n")), (2, "", 1), arguments)
            self.assertIn(named, server.stderr)


unittest.main(argv=sys.argv[:1], verbosity=2)
