#!/bin/sh
# check-exports.sh LIBRARY: what a shared library exports is the public interface and nothing else.
set -eu

classes='Varn_3D|Point3|Vector3|Bbox3|Segment3|Triangle3|Ball3|Tet3|Edge3|Facet3'
classes="$classes|TetAroundEdgeIterator|VarnException|PointLocator"
functions='getNormalVector|isRelease|getMajorVersionNumber|getMinorVersionNumber'
functions="$functions|getRevisionNumber|getVarn3DVersion|timer|generateRandomNumbers"
functions="$functions|generateRandomPoints|getVoronoiCell|normalize|operator<<"
public="^VARN3D::($classes)::|^VARN3D::($functions)(\\[abi:cxx11\\])?\\(|^benchCounter\\("
public="$public|^(typeinfo|typeinfo name|vtable) for VARN3D::VarnException\$"

exported=$(nm -DC --defined-only "$1" | cut -d ' ' -f 3-)
echo "$exported" | grep -q '^VARN3D::Varn_3D::insert(' || { echo "No interface in $1"; exit 1; }
! echo "$exported" | grep -Ev "$public"
