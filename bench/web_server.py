"""An nginx on loopback that serves a folder over HTTPS."""

import contextlib
import pathlib
import socket
import subprocess
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent

NGINX = """
daemon off; master_process off; pid {work}/pid; error_log {work}/errors;
events {{ }}
http {{
  access_log off; sendfile on; keepalive_requests 1000000;
  client_body_temp_path {work}/t; proxy_temp_path {work}/t; fastcgi_temp_path {work}/t;
  uwsgi_temp_path {work}/t; scgi_temp_path {work}/t;
  server {{
    listen 127.0.0.1:{port} ssl; root {served};
    ssl_certificate {certificates}/good.pem; ssl_certificate_key {certificates}/good.key;
  }}
}}
"""


def make_certificates(folder):
    subprocess.run([ROOT / "tools/server/make_certificates.sh", folder], check=True)


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


def wait_for_port(server, port):
    for _ in range(500):
        with socket.socket() as probe:
            if probe.connect_ex(("127.0.0.1", port)) == 0:
                return
        time.sleep(0.01)
    raise RuntimeError(f"{server.args[0]} does not listen")


@contextlib.contextmanager
def running(command, port):
    """Runs a server for as long as the block lasts; gives its base address."""
    server = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        wait_for_port(server, port)
        yield f"https://localhost:{port}/"
    finally:
        server.terminate()
        server.wait()


def nginx(work, served, certificates):
    """work is a folder for the server's own files."""
    work.mkdir()
    port = free_port()
    (work / "nginx.conf").write_text(
        NGINX.format(work=work, served=served, certificates=certificates, port=port))
    return running(["nginx", "-p", work, "-c", work / "nginx.conf"], port)


def slow_server(program, served, certificates, milliseconds):
    """The project's own server, which answers each request for a file so much later."""
    port = free_port()
    return running([program, served, "--https", f"good={port}", "--certificates", certificates,
                    "--fault", f"patcher/get/*=latency:{milliseconds}"], port)
