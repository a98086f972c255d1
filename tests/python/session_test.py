"""Who may call when, and the state that calls share."""

import contextlib
import os
import threading
import unittest
from unittest import mock

from support import FolderTest

import quillon


def in_another_thread(function, *arguments):
    """What the function raises there, or None."""
    raised = []

    def work():
        try:
            function(*arguments)
        except Exception as error:
            raised.append(error)

    thread = threading.Thread(target=work)
    thread.start()
    thread.join()
    return raised[0] if raised else None


class Threads(unittest.TestCase):
    def test_another_thread_is_refused_while_a_session_is_open(self):
        with quillon.Session():
            self.assertIsInstance(in_another_thread(quillon.Version), quillon.Busy)
            self.assertIsInstance(in_another_thread(quillon.Session().__enter__), quillon.Busy)
            self.assertEqual(quillon.Version(), 48)
        self.assertIsNone(in_another_thread(quillon.Version))

    def test_another_thread_is_refused_during_a_call(self):
        started, go_on = threading.Event(), threading.Event()

        def slow(*arguments):
            started.set()
            go_on.wait()
            return 48.0, b""

        with mock.patch("quillon._call._made", slow):
            thread = threading.Thread(target=quillon.Version)
            thread.start()
            started.wait()
            with self.assertRaises(quillon.Busy):
                quillon.CloseFolder()
            go_on.set()
            thread.join()
        self.assertEqual(quillon.Version(), 48)

    def test_many_threads_get_a_result_or_busy(self):
        results = []

        def work():
            for _ in range(300):
                try:
                    results.append(quillon.GetString("abcdefgh", 2))
                except quillon.Busy:
                    results.append("cdefgh")

        threads = [threading.Thread(target=work) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(results, ["cdefgh"] * 1200)

    def test_a_new_process_may_call_whatever_threads_there_were(self):
        opened, go_on = threading.Event(), threading.Event()

        def hold():
            with quillon.Session():
                opened.set()
                go_on.wait()

        thread = threading.Thread(target=hold)
        thread.start()
        opened.wait()
        child = os.fork()
        if child == 0:
            os._exit(0 if quillon.Version() == 48 else 1)
        self.assertEqual(os.waitpid(child, 0)[1], 0)
        go_on.set()
        thread.join()


class Sessions(FolderTest):
    def test_there_is_one_at_a_time(self):
        with quillon.Session():
            with self.assertRaises(quillon.Busy):
                quillon.Session().__enter__()
            with self.assertRaises(quillon.Busy):
                quillon.export_maps(self.mesh(0), print, self.folder / "out.tif")
        with quillon.Session():
            pass

    def test_the_state_is_empty_at_both_ends(self):
        mesh = self.mesh(0, 1)
        quillon.getUVs(mesh, 2, self.folder / "out.Vemo")
        quillon.OpenFolder(self.folder)
        with quillon.Session():
            self.assertEqual(list(quillon.tile_names()), [])
            with self.assertRaises(quillon.NothingOpen):
                quillon.GetFile()
            quillon.getUVsMask(mesh, 2, self.folder / "out.Vemo")
            self.assertEqual(list(quillon.tile_names()), ["1001", "1002"])
        self.assertEqual(list(quillon.tile_names()), [])

    def test_it_ends_with_an_error(self):
        with self.assertRaises(ZeroDivisionError), quillon.Session():
            raise ZeroDivisionError
        self.assertIsNone(in_another_thread(quillon.Version))


class Listings(FolderTest):
    def test_a_listing_has_all_entries(self):
        for name in ("b.tif", "a", ".hidden"):
            (self.folder / name).touch()
        self.assertEqual(sorted(quillon.listing(self.folder)), [".hidden", "a", "b.tif"])

    def test_a_folder_may_change_while_it_is_listed(self):
        for number in range(100):
            (self.folder / f"{number}.tif").touch()
        for name in quillon.listing(self.folder):
            quillon.FileDelete(self.folder / name)
            list(quillon.listing(self.folder))
        self.assertEqual(self.names(), [])

    def test_a_folder_that_is_not_there_is_an_error_at_once(self):
        with self.assertRaises(quillon.NotOpened):
            quillon.listing(self.folder / "no")


class Filters(FolderTest):
    def tiles(self, chosen):
        mesh = self.mesh(0, 1, 2, 5)
        with quillon.tile_filter(chosen):
            quillon.getUVs(mesh, 2, self.folder / "out.Vemo")
        self.assertEqual(quillon.getUVTile(mesh, 2).count, 4)  # all of them again
        return list(quillon.tile_names())

    def test_numbers_and_ranges(self):
        self.assertEqual(self.tiles([1001]), ["1001"])
        self.assertEqual(self.tiles(["1006", "1002-1004"]), ["1002", "1003", "1006"])

    def test_a_file(self):
        path = self.folder / "filter.txt"
        path.write_bytes(b"1001 - 1002,\n 1006\n")
        self.assertEqual(self.tiles(path), ["1001", "1002", "1006"])
        self.assertEqual(self.tiles(str(path)), ["1001", "1002", "1006"])

    def test_what_would_be_passed_over_is_an_error(self):
        path = self.folder / "filter.txt"
        for text, piece in (
            (b"1001\r\n", "1001\\\\r"),
            (b"1001,red", "red"),
            (b"1003-1001", "1003-"),
        ):
            path.write_bytes(text)
            with self.assertRaisesRegex(ValueError, piece), quillon.tile_filter(path):
                self.fail("the block was entered")
        for empty in ([], ["", " "]):
            with self.assertRaisesRegex(ValueError, "no tile"), quillon.tile_filter(empty):
                self.fail("the block was entered")
        with self.assertRaises(FileNotFoundError), quillon.tile_filter(self.folder / "no"):
            self.fail("the block was entered")

    def test_it_ends_with_an_error(self):
        with contextlib.suppress(ZeroDivisionError), quillon.tile_filter([1001]):
            raise ZeroDivisionError
        self.assertEqual(quillon.getUVTile(self.mesh(0, 1), 2).count, 2)


if __name__ == "__main__":
    unittest.main()
