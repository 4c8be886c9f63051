"""An update feed on this machine, which a test reads and answers for."""

import http.server
import threading
from urllib.parse import parse_qsl, urlsplit

FEED = """<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel>
<title>Nimbrel</title><item><title>Nimbrel {version}</title><link>{page}</link>
<pubDate>Fri, 20 Nov 2026 12:00:00 +0000</pubDate>
<sparkle:shortVersionString>{version}</sparkle:shortVersionString>
<description><![CDATA[{notes}]]></description></item></channel></rss>
"""


class LocalFeed:
    """Runs from the start, and answers with what `offer` was told last; stop() takes it away."""

    PAGE = "https://nimbrel.example.org/download?for=linux"

    def __init__(self):
        self.requests = []  # each its parameters, pairs in their order
        self.paths, self.agents = [], []
        self.text = ""
        self.offer("0.0.1")
        feed = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):  # pylint: disable=invalid-name
                feed.note(self)
                text = feed.text.encode()
                self.send_response(200)
                self.send_header("Content-Type", "application/rss+xml")
                self.send_header("Content-Length", str(len(text)))
                self.end_headers()
                self.wfile.write(text)

            def log_message(self, *_):  # pylint: disable=arguments-differ
                pass
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.address = f"http://127.0.0.1:{self.server.server_address[1]}/feed.xml"
        self.thread = threading.Thread(target=self.server.serve_forever, daemon=True)
        self.thread.start()

    def note(self, request):
        url = urlsplit(request.path)
        self.paths.append(url.path)
        self.agents.append(request.headers["User-Agent"])
        self.requests.append(parse_qsl(url.query, keep_blank_values=True, strict_parsing=True))

    def offer(self, version, notes="", page=PAGE):
        self.text = FEED.format(version=version, notes=notes, page=page.replace("&", "&amp;"))

    def stop(self):
        if self.thread is None:
            return
        self.server.shutdown()
        self.thread.join()
        self.server.server_close()
        self.thread = None
