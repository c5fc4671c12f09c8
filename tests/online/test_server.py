#!/usr/bin/env python3
"""A loopback HTTP server for the online tests.

Serves the folder given as its argument, prints the port it listens on,
then the path of every request as it arrives. Below /slow/ every path answers after a second; below /hang/ nothing ever
answers. It ends when its standard input closes, so it never outlives the
test that started it."""
import http.server
import sys
import threading
import time


class Handler(http.server.SimpleHTTPRequestHandler):
    def do_GET(self):
        print(self.path, flush=True)
        if self.path.startswith("/hang/"):
            time.sleep(3600)
            return
        if self.path.startswith("/slow/"):
            time.sleep(1)
            self.path = self.path[len("/slow"):]
        super().do_GET()

    def log_message(self, *args):
        pass


def main():
    root = sys.argv[1]
    server = http.server.ThreadingHTTPServer(
        ("127.0.0.1", 0), lambda *a, **k: Handler(*a, directory=root, **k))
    server.daemon_threads = True
    threading.Thread(target=server.serve_forever, daemon=True).start()
    print(server.server_address[1], flush=True)
    sys.stdin.read()


if __name__ == "__main__":
    main()
