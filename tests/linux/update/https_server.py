#!/usr/bin/env python3
"""Serves a folder over HTTPS on 127.0.0.1 for the updater's tests.

    https_server.py FOLDER CERT KEY PORT_FILE

Writes the port it listens on to PORT_FILE once it accepts connections. A path under
/truncated/ sends the file's full Content-Length but only half its bytes, then closes; one under
/stall/ is accepted and never answered.
"""
import http.server
import os
import ssl
import sys
import threading


class Handler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *args):
        pass

    def do_GET(self):
        if self.path.startswith("/stall/"):
            threading.Event().wait()
        if not self.path.startswith("/truncated/"):
            return super().do_GET()
        path = os.path.join(self.directory, self.path[len("/truncated/"):])
        with open(path, "rb") as f:
            body = f.read()
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body[: len(body) // 2])
        self.wfile.flush()
        self.close_connection = True


def main():
    folder, cert, key, port_file = sys.argv[1:5]
    handler = lambda *a, **k: Handler(*a, directory=folder, **k)
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(cert, key)
    server.socket = context.wrap_socket(server.socket, server_side=True)
    with open(port_file + ".tmp", "w") as f:
        f.write(str(server.server_address[1]))
    os.rename(port_file + ".tmp", port_file)
    server.serve_forever()


if __name__ == "__main__":
    main()
