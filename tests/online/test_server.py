#!/usr/bin/env python3
"""Loopback HTTP server for the online tests: serves the folder in argv[1],
prints its port, then each requested path. Below /slow/ answers come after a
second; below /hang/ never. It ends when its standard input closes."""
import http.server
import sys
import threading
import time


class Handler(http.server.SimpleHTTPRequestHandler):
    def do_GET(self):
        print(self.path, flush=True)
        if self.path.startswith("/hang/"):
            return time.sleep(3600)
        if self.path.startswith("/slow/"):
            time.sleep(1)
            self.path = self.path[len("/slow"):]
        super().do_GET()

    def log_message(self, *args):
        pass


server = http.server.ThreadingHTTPServer(
    ("127.0.0.1", 0), lambda *a, **k: Handler(*a, directory=sys.argv[1], **k))
server.daemon_threads = True
threading.Thread(target=server.serve_forever, daemon=True).start()
print(server.server_address[1], flush=True)
sys.stdin.read()
