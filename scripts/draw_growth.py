#!/usr/bin/python3
"""Draws growth curves from what bench/growth prints and tells how steep they are.

  scripts/draw_growth.py POINTS.csv PICTURE.png

The picture shows no times: each curve is relative to its first point. Prints a table with the
exponent between the last two sizes: 1 is linear.
"""
import collections
import csv
import math
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt


def read_curves(path):
    curves = collections.OrderedDict()
    with open(path, newline="") as stream:
        for job, unit, size, seconds in csv.reader(stream):
            curves.setdefault((unit, job), []).append((int(size), float(seconds)))
    return curves


def exponent(points):
    (size, seconds), (larger, longer) = points[-2:]
    return math.log(longer / seconds) / math.log(larger / size)


def draw(curves, picture):
    units = list(dict.fromkeys(unit for unit, _ in curves))
    figure, axes = plt.subplots(1, len(units), figsize=(4.6 * len(units), 4.2), sharey=True)
    for axis, unit in zip(axes, units):
        for (of, job), points in curves.items():
            if of == unit:
                sizes = [size for size, _ in points]
                costs = [seconds / points[0][1] for _, seconds in points]
                axis.loglog(sizes, costs, marker="o", label=job)
        low, high = axis.get_xlim()
        axis.loglog([low, high], [1, high / low], color="0.7", linestyle=":", label="linear")
        axis.set_xlabel(unit)
        axis.legend(fontsize=8)
    axes[0].set_ylabel("cost, relative to the smallest size")
    figure.tight_layout()
    figure.savefig(picture, dpi=110)


def main():
    curves = read_curves(sys.argv[1])
    draw(curves, sys.argv[2])
    print("| job | grows with | sizes | exponent at the end |")
    print("|---|---|---|---|")
    for (unit, job), points in curves.items():
        sizes = ", ".join(f"{size:,}" for size, _ in points)
        print(f"| {job} | {unit} | {sizes} | {exponent(points):.2f} |")


if __name__ == "__main__":
    main()
