#!/usr/bin/env python3
"""Shows what the plug-in "ROI Sender" sends: a line for each volume, with a bar for each ROI that
stands between the smallest and the largest mean so far. Ctrl+C ends it.

SPDX-License-Identifier: GPL-3.0-or-later
"""
import argparse
import json
import socket

BAR_WIDTH = 30


class Bars:
    """Text bars, each scaled by the range that its ROI has shown."""

    def __init__(self):
        self.ranges = {}

    def bar(self, roi, mean):
        low, high = self.ranges.get(roi, (mean, mean))
        low, high = min(low, mean), max(high, mean)
        self.ranges[roi] = (low, high)
        filled = round(BAR_WIDTH * (mean - low) / (high - low)) if high > low else 0
        return f"{mean:10.2f} |{'#' * filled:<{BAR_WIDTH}}|"

    def line(self, message):
        bars = (self.bar(roi, mean) for roi, mean in enumerate(message["rois"]))
        return f"volume {message['volume']:4d}  condition {message['condition']:2d}  " + " ".join(bars)


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("port", type=int, nargs="?", default=50200)
    port = arguments.parse_args().port
    bars = Bars()
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as receiver:
        receiver.bind(("127.0.0.1", port))
        print(f"Waiting for the program on port {port}", flush=True)
        while True:
            message = json.loads(receiver.recv(65536))
            if message["volume"] == 1:
                bars = Bars()  # a new run
            print(bars.line(message), flush=True)


if __name__ == "__main__":
    try:
        main()
    except KeyboardInterrupt:
        pass
