"""The desktop's file manager, which a test reads instead of looks at."""

import json
from urllib.parse import unquote, urlparse

from desk import Service


class FileManager(Service):
    def __init__(self, desk):
        super().__init__(desk, "file_manager")

    def expect_shown(self, path=None, method=None):
        """Waits until a folder is shown (ShowFolders) or an item in its own (ShowItems). Returns
        the method and the path."""
        while True:
            shown = self._next(method)
            if path is None or shown[1] == str(path):
                return shown

    def _next(self, method):
        self.desk.until(lambda: self.lines.waiting or self.lines.quiet(0.1),
                        f"the file manager's {method or 'window'}")
        word, _, uris = self.lines.waiting.popleft().partition("\t")
        if method is not None and word != method:
            return self._next(method)
        return word, unquote(urlparse(json.loads(uris)[0]).path)

    def shown(self):
        """All that it was asked for since it was read last: pairs of method and path."""
        calls = []
        for line in self.lines.all():
            word, _, uris = line.partition("\t")
            calls += [(word, unquote(urlparse(uri).path)) for uri in json.loads(uris)]
        return calls
