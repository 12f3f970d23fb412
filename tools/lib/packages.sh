# The lists of Debian packages that the tool chains consist of.

# Prints the packages that every tool chain needs.
package_names()
{
    package_names_in "$repository/tools/packages.txt"
}

# Prints the packages of the chosen root.
root_package_names()
{
    package_names
    [[ $root_kind != workshop ]] || package_names_in "$repository/tools/packages-workshop.txt"
}

package_names_in()
{
    sed 's/#.*//' "$1" | awk 'NF { print $1 }'
}
