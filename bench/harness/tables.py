"""Tables of results, for the terminal and as Markdown."""

import math
import statistics

from .runners import BASE, SUBJECT


def formatted(value, digits):
    return "-" if value is None else f"{value:.{digits}f}"


def geometric_mean(values):
    return math.exp(statistics.fmean(math.log(value) for value in values)) if values else None


def ratio(results, name, value):
    """What the runner `name` took, relative to the subject: above 1, the subject is ahead."""
    if name not in results or SUBJECT not in results:
        return None
    return value(results[name]) / value(results[SUBJECT])


def best_peer(results, peers, value):
    """Ratio and name of the peer that comes closest to the subject or is ahead of it."""
    ratios = [(ratio(results, peer, value), peer) for peer in peers if peer in results]
    return min(ratios) if ratios and SUBJECT in results else (None, "")


def ratio_rows(table, names, own_columns, value, title):
    """One row per measured thing: own columns of the subject, then every other runner's ratio.

    `own_columns` is a list of (heading, function of the subject's samples giving a text)."""
    others = [name for name in names if name != SUBJECT]
    peers = [name for name in others if name != BASE]
    rows = [[title] + [heading for heading, _ in own_columns] + others + ["best peer"] * bool(peers)]
    for benchmark, results in table.items():
        own = results.get(SUBJECT)
        row = [benchmark] + [text(own) if own else "-" for _, text in own_columns]
        row += [formatted(ratio(results, name, value), 2) for name in others]
        if peers:
            closest, peer = best_peer(results, peers, value)
            row.append(f"{formatted(closest, 2)} {peer}".strip())
        rows.append(row)
    return rows + [mean_row(table, own_columns, others, peers, value)]


def mean_row(table, own_columns, others, peers, value):
    row = ["geometric mean"] + [""] * len(own_columns)
    for name in others:
        ratios = [ratio(results, name, value) for results in table.values()]
        row.append(formatted(geometric_mean([each for each in ratios if each]), 2))
    if peers:
        closest = [best_peer(results, peers, value)[0] for results in table.values()]
        row.append(formatted(geometric_mean([each for each in closest if each]), 2))
    return row


def plain_rows(table, names, value, digits, title):
    """The values themselves, one column per runner."""
    rows = [[title] + list(names)]
    for benchmark, results in table.items():
        rows.append([benchmark] + [
            formatted(value(results[name]) if name in results else None, digits) for name in names])
    return rows


def print_table(rows):
    widths = [max(len(row[column]) for row in rows) for column in range(len(rows[0]))]
    for row in rows:
        cells = [row[0].ljust(widths[0])] + [
            cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]
        print("  ".join(cells).rstrip())


def markdown(rows):
    lines = ["| " + " | ".join(rows[0]) + " |", "|---|" + "--:|" * (len(rows[0]) - 1)]
    lines += ["| " + " | ".join(row) + " |" for row in rows[1:]]
    return "\n".join(lines) + "\n"


def behind(table, names, value):
    """The rows in which a peer is ahead, the worst first: (ratio, row, peer)."""
    peers = [name for name in names if name not in (SUBJECT, BASE)]
    closest = [best_peer(results, peers, value) + (row,) for row, results in table.items()]
    return sorted((each, row, peer) for each, peer, row in closest if each is not None and each < 1)
