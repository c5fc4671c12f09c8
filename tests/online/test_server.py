#!/usr/bin/env python3
"""Loopback HTTP server for the online tests: serves the folder in argv[1],
prints its port, then each requested path. Below /slow/ answers come after a
second; below /hang/ never. A file beside the requested one, named like it
with ".behaviour" added, makes the server misbehave for that path:

  hang      accept the request and never answer
  endless   answer 200 and send bytes until the client goes away
  huge      announce 4 GiB and send bytes until the client goes away

It ends when its standard input closes."""
import http.server
import os
import sys
import threading
import time

CHUNK = b"\0" * 65536


class Handler(http.server.SimpleHTTPRequestHandler):
    def do_GET(self):
        print(self.path, flush=True)
        if self.path.startswith("/hang/"):
            return time.sleep(3600)
        if self.path.startswith("/slow/"):
            time.sleep(1)
            self.path = self.path[len("/slow"):]
        behaviour = self.behaviour()
        if behaviour == "hang":
            return time.sleep(3600)
        if behaviour in ("endless", "huge"):
            return self.flood(behaviour == "huge")
        super().do_GET()

    def behaviour(self):
        path = self.translate_path(self.path) + ".behaviour"
        if not os.path.isfile(path):
            return ""
        with open(path) as f:
            return f.read().strip()

    def flood(self, announce):
        self.send_response(200)
        self.send_header("Content-Type", "application/octet-stream")
        if announce:
            self.send_header("Content-Length", str(4 << 30))
        self.end_headers()
        try:
            while True:
                self.wfile.write(CHUNK)
        except OSError:
            pass

    def log_message(self, *args):
        pass


server = http.server.ThreadingHTTPServer(
    ("127.0.0.1", 0), lambda *a, **k: Handler(*a, directory=sys.argv[1], **k))
server.daemon_threads = True
threading.Thread(target=server.serve_forever, daemon=True).start()
print(server.server_address[1], flush=True)
sys.stdin.read()
