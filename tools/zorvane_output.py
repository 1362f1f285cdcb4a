"""Files that a tool writes for its user."""
import contextlib
import os

from zorvane_requests import Problem


class Output:
    """A file that takes its name when it is complete. A link or a device stays what it is."""

    def __init__(self, path):
        self.path = path
        plain = not path.is_symlink() and (path.is_file() or not path.exists())
        self.target = path.with_name(f'.{path.name}.{os.getpid()}') if plain else path
        self.file = None

    @contextlib.contextmanager
    def _naming(self):
        try:
            yield
        except OSError as problem:
            raise Problem(f'cannot write {self.path}: {problem.strerror}') from None

    def check(self):
        """Fail when the file cannot be written, as far as that can be seen before."""
        if self.path.is_dir():
            raise Problem(f'cannot write {self.path}: it is a folder')
        if not self.path.parent.is_dir():
            raise Problem(f'cannot write {self.path}: there is no folder {self.path.parent}')
        with self._naming():
            open(self.target, 'ab').close()
        self._remove()

    def __enter__(self):
        with self._naming():
            self.file = open(self.target, 'wb')
        return self

    def write(self, data):
        """Write bytes."""
        with self._naming():
            self.file.write(data)

    def __exit__(self, failure, *_):
        try:
            with self._naming():
                self.file.close()
                if failure is None and self.target != self.path:
                    self.target.replace(self.path)
        finally:
            self._remove()

    def _remove(self):
        if self.target != self.path:
            self.target.unlink(missing_ok=True)
