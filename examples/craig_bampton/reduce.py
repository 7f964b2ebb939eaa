#!/usr/bin/env python3
"""Reduces a finite-element model to a Craig-Bampton set.

  reduce.py MESH.inp NAME REDUCED.txt INTERFACE_NODES NORMAL_MODES

Reads the stiffness and mass matrix that CalculiX stored (NAME.sti, NAME.mas, NAME.dof) and the
coordinates and the node set INTERFACE of the mesh. The set is one constraint mode per degree of
freedom of the interface nodes (that one moves by one, the others are held, the rest follows
statically) and the lowest normal modes with all of them held. Neither are orthogonal to each other,
so the reduced matrices are dense. Writes them, the modes and the nodes as text, and beside the
modes the frequencies of the reduced pair for whoever wants to compare.
"""
import sys

import numpy as np
import scipy.linalg
import scipy.sparse
import scipy.sparse.linalg


def read_mesh(path):
    """Coordinates by node and the nodes of the set INTERFACE, in the deck's order."""
    nodes, interface, keyword = {}, [], ""
    for line in open(path):
        if line.startswith("*"):
            keyword = line.strip().upper().replace(" ", "")
            continue
        fields = [field for field in line.replace(",", " ").split() if field]
        if keyword.startswith("*NODE") and "PRINT" not in keyword and "FILE" not in keyword:
            nodes[int(fields[0])] = [float(field) for field in fields[1:4]]
        elif keyword == "*NSET,NSET=INTERFACE":
            interface += [int(field) for field in fields]
    return nodes, list(dict.fromkeys(interface))


def read_matrix(path, order):
    """A symmetric matrix of which the file has one triangle."""
    rows, columns, values = np.loadtxt(path, unpack=True)
    rows, columns = rows.astype(int) - 1, columns.astype(int) - 1
    triangle = scipy.sparse.coo_matrix((values, (rows, columns)), shape=(order, order)).tocsc()
    diagonal = scipy.sparse.diags(triangle.diagonal())
    return (triangle + triangle.T - diagonal).tocsc()


def read_dofs(path):
    """Node and direction (0 to 2) of each row of the matrices."""
    dofs = []
    for line in open(path):
        node, direction = line.split(".")
        dofs.append((int(node), int(direction) - 1))
    return dofs


def spread(candidates, nodes, count):
    """Nodes far apart from each other: each next one is the farthest from those before."""
    places = np.array([nodes[node] for node in candidates])
    chosen = [0]
    distance = np.linalg.norm(places - places[0], axis=1)
    while len(chosen) < min(count, len(candidates)):
        chosen.append(int(np.argmax(distance)))
        distance = np.minimum(distance, np.linalg.norm(places - places[chosen[-1]], axis=1))
    return sorted(candidates[index] for index in chosen)


def craig_bampton(stiffness, mass, boundary, normal_modes):
    """The modes as columns: first the normal ones, then one per degree of freedom of `boundary`."""
    order = stiffness.shape[0]
    interior = np.setdiff1d(np.arange(order), boundary)
    inner_stiffness = stiffness[interior][:, interior].tocsc()
    inner_mass = mass[interior][:, interior].tocsc()
    factors = scipy.sparse.linalg.splu(inner_stiffness)

    modes = np.zeros((order, normal_modes + len(boundary)))
    _, normal = scipy.sparse.linalg.eigsh(
        inner_stiffness, normal_modes, inner_mass, sigma=0.0,
        OPinv=scipy.sparse.linalg.LinearOperator(inner_stiffness.shape, factors.solve),
        v0=np.ones(len(interior)))
    modes[interior, :normal_modes] = normal
    modes[boundary, normal_modes + np.arange(len(boundary))] = 1.0
    coupling = stiffness[interior][:, boundary].toarray()
    modes[interior, normal_modes:] = -factors.solve(coupling)
    return modes


def nodal_masses(mass, dofs, nodes):
    """The diagonal of the mass matrix, scaled to the mass of a translation."""
    diagonal = mass.diagonal()
    along_x = np.array([direction == 0 for _, direction in dofs], dtype=float)
    factor = along_x @ (mass @ along_x) / (along_x @ diagonal)
    masses = dict.fromkeys(nodes, 0.0)
    for (node, direction), value in zip(dofs, diagonal):
        if direction == 0:
            masses[node] += factor * value
    return masses


def symmetric(matrix):
    return (matrix + matrix.T) / 2


def write_numbers(file, rows):
    for row in rows:
        file.write(" ".join(f"{value:.17g}" for value in row) + "\n")


def main(mesh, name, output, interface_nodes, normal_modes):
    nodes, candidates = read_mesh(mesh)
    dofs = read_dofs(name + ".dof")
    stiffness = read_matrix(name + ".sti", len(dofs))
    mass = read_matrix(name + ".mas", len(dofs))
    interface = spread(candidates, nodes, int(interface_nodes))
    boundary = np.array([row for row, (node, _) in enumerate(dofs) if node in set(interface)])

    modes = craig_bampton(stiffness, mass, boundary, int(normal_modes))
    reduced_stiffness = symmetric(modes.T @ (stiffness @ modes))
    reduced_mass = symmetric(modes.T @ (mass @ modes))
    eigenvalues = scipy.linalg.eigh(reduced_stiffness, reduced_mass, eigvals_only=True)
    frequencies = np.sign(eigenvalues) * np.sqrt(np.abs(eigenvalues)) / (2 * np.pi)

    shapes = {node: np.zeros((3, modes.shape[1])) for node in nodes}
    for (node, direction), row in zip(dofs, modes):
        shapes[node][direction] = row
    masses = nodal_masses(mass, dofs, nodes)
    with open(output, "w") as file:
        file.write(f"{len(nodes)} {len(interface)} {modes.shape[1]}\n")
        for node, place in nodes.items():
            file.write(f"{node} ")
            write_numbers(file, [[*place, masses[node]]])
        file.write(" ".join(map(str, interface)) + "\n")
        write_numbers(file, reduced_stiffness)
        write_numbers(file, reduced_mass)
        for node in nodes:
            write_numbers(file, shapes[node].T)
        write_numbers(file, [frequencies])
    print(f"{len(nodes)} nodes, {len(dofs)} degrees of freedom")
    print(f"{normal_modes} normal modes, {len(boundary)} constraint modes of nodes",
          " ".join(map(str, interface)))


if __name__ == "__main__":
    if len(sys.argv) != 6:
        sys.exit(__doc__)
    main(*sys.argv[1:])
