#!/usr/bin/python3
"""The cyclic sending of python-can, for cyclic_bench to measure: cyclic_peer.py PORT MESSAGES PERIOD_MS SECONDS

Prints the seconds of processor time that it took.
"""
import sys
import time

import can

port, messages, period_ms, seconds = (int(text) for text in sys.argv[1:])
bus = can.Bus(interface="socketcand", host="127.0.0.1", port=port, channel="can1")
before = time.process_time()
tasks = [bus.send_periodic(can.Message(arbitration_id=0x100 + number, is_extended_id=False), period_ms / 1000)
         for number in range(messages)]
time.sleep(seconds)
for task in tasks:
    task.stop()
print(time.process_time() - before)
time.sleep(0.1)  # stop() does not wait for the threads
bus.shutdown()
